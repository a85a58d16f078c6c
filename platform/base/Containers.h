// Vectors and hash tables.
#pragma once

#include "platform/base/Strings.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <deque>
#include <utility>
#include <vector>

namespace kv {

template <class T>
using vector = std::vector<T>;

struct StringHash {
    size_t operator()(const kvString::CString& text) const { return kvString::hashfunction(text); }
};

struct UnsignedHash {
    size_t operator()(unsigned int number) const { return number; } // a number is its own hash
};

// A hash table that is walked in the order in which its keys were first inserted. Values stay where they are
// until the table is cleared, so that a walk may insert.
template <class Key, class Value, class Hash>
class HashTable {
public:
    struct Item {
        Key key;
        Value value;
    };

    // The key's value, a fresh one if the key is new.
    Value& getOrInsert(const Key& key) {
        const auto place = places.find(key);
        if (place != places.end()) return items[place->second].value;
        items.push_back(Item{key, Value()});
        try {
            places.emplace(key, items.size() - 1);
        } catch (...) {
            items.pop_back();
            throw;
        }
        return items.back().value;
    }

    // Null when the key is not there.
    const Value* find(const Key& key) const {
        const auto place = places.find(key);
        return place == places.end() ? nullptr : &items[place->second].value;
    }

    int count() const { return static_cast<int>(items.size()); }

    auto begin() { return items.begin(); }
    auto end() { return items.end(); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }

    // The table is empty before its values die, so that what their end sets off finds nothing here.
    void clear() {
        places.clear();
        const auto dying = std::exchange(items, {});
    }

private:
    boost::unordered_flat_map<Key, size_t, Hash> places;
    std::deque<Item> items;
};

template <class Value>
using StringTable = HashTable<kvString::CString, Value, StringHash>;
template <class Value>
using UnsignedTable = HashTable<unsigned int, Value, UnsignedHash>;

} // namespace kv
