#include "platform/base/Strings.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <utility>

#if defined(_WIN32)
#include <climits>
#include <windows.h>
#endif

namespace kvString {

namespace {

unsigned char lowerCase(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 'a' - 'A') : c;
}

#if defined(_WIN32)

// Without the flags that refuse them, invalid bytes become replacement characters. Text that is too long for
// these functions stays as it is.
std::string convert(const std::string& text, UINT fromCodePage, UINT toCodePage) {
    if (text.empty() || text.size() > INT_MAX / 4) return text;
    const int size = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<size_t>(MultiByteToWideChar(fromCodePage, 0, text.data(), size, nullptr, 0)), L'\0');
    const int wideSize = static_cast<int>(wide.size());
    MultiByteToWideChar(fromCodePage, 0, text.data(), size, wide.data(), wideSize);
    const int resultSize =
        WideCharToMultiByte(toCodePage, 0, wide.data(), wideSize, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(resultSize), '\0');
    WideCharToMultiByte(toCodePage, 0, wide.data(), wideSize, result.data(), resultSize, nullptr, nullptr);
    return result;
}

std::string toUtf8(const std::string& multibyte) {
    return convert(multibyte, CP_ACP, CP_UTF8);
}
std::string toMultibyte(const std::string& utf8) {
    return convert(utf8, CP_UTF8, CP_ACP);
}

#else

// File names elsewhere are bytes without a stated encoding, so they must come back out as they went in.
std::string toUtf8(const std::string& multibyte) {
    return multibyte;
}
std::string toMultibyte(const std::string& utf8) {
    return utf8;
}

#endif

} // namespace

CString::CString() = default;
CString::CString(const char* characters)
    : text(characters ? characters : "") {}
CString::CString(const char* characters, size_t length)
    : text(characters ? std::string(characters, length) : std::string()) {}
CString::CString(const CString& other) = default;
CString::CString(CString&& other) noexcept = default;
CString& CString::operator=(const CString& other) = default;
CString& CString::operator=(CString&& other) noexcept = default;
CString::~CString() = default;

CString& CString::format(const char* pattern, ...) {
    va_list arguments;
    va_start(arguments, pattern);
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, pattern, measured);
    va_end(measured);
    // Printed aside first: the arguments may point into this very text.
    std::string printed(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(printed.data(), printed.size() + 1, pattern, arguments);
    va_end(arguments);
    text = std::move(printed);
    return *this;
}

CString& CString::append(const CString& other) {
    text += other.text;
    return *this;
}

const char* CString::asChar() const {
    return text.c_str();
}
size_t CString::length() const {
    return text.size();
}
bool CString::empty() const {
    return text.empty();
}

int CString::compareNoCase(const CString& other) const {
    const size_t common = std::min(text.size(), other.text.size());
    for (size_t i = 0; i < common; ++i) {
        const int a = lowerCase(static_cast<unsigned char>(text[i]));
        const int b = lowerCase(static_cast<unsigned char>(other.text[i]));
        if (a != b) return a - b;
    }
    return text.size() == other.text.size() ? 0 : text.size() < other.text.size() ? -1 : 1;
}

bool operator==(const CString& a, const CString& b) {
    return a.length() == b.length() && std::equal(a.asChar(), a.asChar() + a.length(), b.asChar());
}

bool operator!=(const CString& a, const CString& b) {
    return !(a == b);
}

bool operator<(const CString& a, const CString& b) {
    return std::lexicographical_compare(
        a.asChar(), a.asChar() + a.length(), b.asChar(), b.asChar() + b.length(),
        [](char x, char y) { return static_cast<unsigned char>(x) < static_cast<unsigned char>(y); });
}

// FNV-1a, 32 bits (Fowler, Noll, Vo 1991).
unsigned int hashfunction(const CString& text) {
    std::uint32_t hash = 2166136261u;
    for (size_t i = 0; i < text.length(); ++i) {
        hash = (hash ^ static_cast<unsigned char>(text.asChar()[i])) * 16777619u;
    }
    return hash;
}

IString::IString() = default;
IString::IString(const char* text, Encoding encoding)
    : utf8(text ? text : "") {
    if (encoding != EncodingUtf8) utf8 = toUtf8(utf8);
}
IString::IString(const IString& other) = default;
IString::IString(IString&& other) noexcept = default;
IString& IString::operator=(const IString& other) = default;
IString& IString::operator=(IString&& other) noexcept = default;
IString::~IString() = default;

IString& IString::append(const IString& text) {
    utf8 += text.utf8;
    return *this;
}

CString IString::asMultibyte(Encoding encoding) const {
    const std::string text = encoding == EncodingUtf8 ? utf8 : toMultibyte(utf8);
    return CString(text.data(), text.size());
}

bool IString::empty() const {
    return utf8.empty();
}

bool operator==(const IString& a, const IString& b) {
    return a.utf8 == b.utf8;
}
bool operator!=(const IString& a, const IString& b) {
    return !(a == b);
}

} // namespace kvString
