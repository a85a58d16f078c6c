/// @file
/// Vectors and hash tables.
#pragma once

#include "platform/base/Strings.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <deque>
#include <utility>
#include <vector>

namespace kv {

/// The standard one, with the host's name for it.
template <class T>
using vector = std::vector<T>;

/// The hash of string keys.
struct StringHash {
    /// kvString::hashfunction of the key.
    size_t operator()(const kvString::CString& text) const { return kvString::hashfunction(text); }
};

/// The hash of uids.
struct UnsignedHash {
    size_t operator()(unsigned int number) const { return number; } ///< A number is its own hash.
};

/// A hash table that is walked in the order in which its keys were first inserted. Items stay where they are
/// until the table is cleared. One thread at a time, unless all only read.
template <class Key, class Value, class Hash>
class HashTable {
public:
    /// What a walk comes to.
    struct Item {
        Key key;     ///< Not to be changed.
        Value value; ///< Free to be changed.
    };

    HashTable() = default;
    HashTable(const HashTable&) = delete;
    HashTable& operator=(const HashTable&) = delete;

    /// The key's value, a fresh one if the key is new. Valid until the table is cleared. Throws
    /// std::bad_alloc, and the table is then as it was.
    Value& getOrInsert(const Key& key) {
        const auto place = places.find(key);
        if (place != places.end()) return place->second->value;
        items.push_back(Item{key, Value()});
        try {
            places.emplace(key, &items.back());
        } catch (...) {
            items.pop_back();
            throw;
        }
        return items.back().value;
    }

    /// Null when the key is not there. Valid until the table is cleared.
    const Value* find(const Key& key) const {
        const auto place = places.find(key);
        return place == places.end() ? nullptr : &place->second->value;
    }

    /// Keys; each counts once, however often it was inserted.
    int count() const { return static_cast<int>(items.size()); }

    /// @{
    /// A walk over the items, by the first insertion of each key. Nothing may be inserted meanwhile.
    auto begin() { return items.begin(); }
    auto end() { return items.end(); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }
    /// @}

    /// The table is empty before its values die, so that what their end sets off finds nothing here. Throws
    /// std::bad_alloc, and the table is then as it was.
    void clear() {
        std::deque<Item> dying; // even an empty one takes memory
        places.clear();
        items.swap(dying);
    }

private:
    boost::unordered_flat_map<Key, Item*, Hash> places;
    std::deque<Item> items;
};

/// By identifier.
template <class Value>
using StringTable = HashTable<kvString::CString, Value, StringHash>;

/// By uid.
template <class Value>
using UnsignedTable = HashTable<unsigned int, Value, UnsignedHash>;

} // namespace kv
