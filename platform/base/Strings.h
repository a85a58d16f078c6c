// 8-bit strings, international strings, and the splitting of text.
#pragma once

#include "platform/base/Export.h"

#include <string>
#include <vector>

namespace kvString {

// How 8-bit text is encoded.
enum Encoding {
    EncodingMultibyte = 0, // the platform's: the active code page on Windows; bytes as they are elsewhere
    EncodingUtf8 = 1,
};

// A string of 8-bit characters, of whatever encoding its owner means. Null pointers are empty texts.
class KVBASE_API CString {
public:
    CString();
    CString(const char* text); // not explicit: literals pass as strings
    CString(const char* text, size_t length);
    CString(const CString& other);
    CString(CString&& other) noexcept;
    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    ~CString();

    // Replaces the text by what printf would print, in whichever locale the process has; returns *this.
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    CString&
    format(const char* pattern, ...);

    CString& append(const CString& text);
    const char* asChar() const; // zero-terminated, valid until the string changes
    size_t length() const;      // bytes
    bool empty() const;

    // 0 when equal but for the case of ASCII letters; else below or above 0 as the texts' order.
    int compareNoCase(const CString& other) const;

private:
    std::string text;
};

KVBASE_API bool operator==(const CString& a, const CString& b);
KVBASE_API bool operator!=(const CString& a, const CString& b);
KVBASE_API bool operator<(const CString& a, const CString& b); // by unsigned bytes

KVBASE_API unsigned int hashfunction(const CString& text);

// A string of international text. Bytes that are invalid in the stated encoding never make it fail: they
// become replacement characters, or stay as they are where the platform keeps bytes.
class KVBASE_API IString {
public:
    IString();
    IString(const char* text, Encoding encoding);
    IString(const IString& other);
    IString(IString&& other) noexcept;
    IString& operator=(const IString& other);
    IString& operator=(IString&& other) noexcept;
    ~IString();

    IString& append(const IString& text);
    CString asMultibyte(Encoding encoding = EncodingMultibyte) const;
    bool empty() const;

private:
    friend KVBASE_API bool operator==(const IString& a, const IString& b);
    std::string utf8;
};

KVBASE_API bool operator==(const IString& a, const IString& b);
KVBASE_API bool operator!=(const IString& a, const IString& b);

} // namespace kvString

namespace kvUtil {

// The pieces of a text between separators, in order. An empty text has no piece; a separator at the very end
// is followed by a last, empty piece. Empty pieces are dropped unless keepEmpty; trim cuts blanks (space,
// tab, carriage return, line feed) from both ends of each piece first.
KVBASE_API std::vector<kvString::CString> split(const kvString::CString& text, char separator, bool keepEmpty,
                                                bool trim);

} // namespace kvUtil
