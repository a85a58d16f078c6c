/// @file
/// 8-bit strings, international strings, and the splitting of text.
///
/// Strings are values: copies share nothing. One string belongs to one thread at a time, unless all only
/// read. Memory that is not to be had throws std::bad_alloc.
#pragma once

#include "platform/base/Export.h"

#include <string>
#include <vector>

/// The host's base library: strings.
namespace kvString {

/// How 8-bit text is encoded.
enum Encoding {
    EncodingMultibyte = 0, ///< The platform's: the active code page on Windows; bytes as they are elsewhere.
    EncodingUtf8 = 1,      ///< UTF-8.
};

/// A string of 8-bit characters, of whatever encoding its owner means. Null pointers are empty texts.
class KVBASE_API CString {
public:
    CString();
    /// Copies up to the first zero.
    CString(const char* text); // not explicit: literals pass as strings
    /// Copies that many bytes, zeros included.
    CString(const char* text, size_t length);
    /// @{
    /// A copy; a move may leave any text behind.
    CString(const CString& other);
    CString(CString&& other) noexcept;
    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    /// @}
    ~CString();

    /// Replaces the text by what printf would print, in whichever locale the process has; returns *this. The
    /// arguments may point into this text.
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    CString&
    format(const char* pattern, ...);

    CString& append(const CString& text); ///< Puts the other text behind this one; returns *this.
    const char* asChar() const;           ///< Zero-terminated, valid until the string changes.
    size_t length() const;                ///< Bytes, without the zero at the end.
    bool empty() const;                   ///< Whether the length is 0.

    /// 0 when equal but for the case of ASCII letters; else below or above 0 as the texts' order.
    int compareNoCase(const CString& other) const;

private:
    std::string text;
};

/// @{
/// Compares bytes and lengths.
KVBASE_API bool operator==(const CString& a, const CString& b);
KVBASE_API bool operator!=(const CString& a, const CString& b);
/// @}
KVBASE_API bool operator<(const CString& a, const CString& b); ///< By unsigned bytes.

/// 32 bits of the text's bytes, the same in every process and on every platform.
KVBASE_API unsigned int hashfunction(const CString& text);

/// A string of international text. Bytes that are invalid in the stated encoding never make it fail: they
/// become replacement characters, or stay as they are where the platform keeps bytes.
class KVBASE_API IString {
public:
    IString();
    /// Copies text up to the first zero; null is an empty text.
    IString(const char* text, Encoding encoding);
    /// @{
    /// A copy; a move may leave any text behind.
    IString(const IString& other);
    IString(IString&& other) noexcept;
    IString& operator=(const IString& other);
    IString& operator=(IString&& other) noexcept;
    /// @}
    ~IString();

    IString& append(const IString& text); ///< Puts the other text behind this one; returns *this.

    /// The text in that encoding. What a code page cannot express becomes its substitute character.
    CString asMultibyte(Encoding encoding = EncodingMultibyte) const;
    bool empty() const; ///< Whether there is no character.

private:
    friend KVBASE_API bool operator==(const IString& a, const IString& b);
    std::string utf8;
};

/// @{
/// Compares characters, whatever encoding they came in.
KVBASE_API bool operator==(const IString& a, const IString& b);
KVBASE_API bool operator!=(const IString& a, const IString& b);
/// @}

} // namespace kvString

/// The host's base library: helpers.
namespace kvUtil {

/// The pieces of a text between separators, in order. An empty text has no piece; a separator at the very end
/// is followed by a last, empty piece. Empty pieces are dropped unless keepEmpty; trim cuts blanks (space,
/// tab, carriage return, line feed) from both ends of each piece first.
KVBASE_API std::vector<kvString::CString> split(const kvString::CString& text, char separator, bool keepEmpty,
                                                bool trim);

} // namespace kvUtil
