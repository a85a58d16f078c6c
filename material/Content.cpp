#include "material/Content.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>

#if defined(_WIN32)
#include <sys/stat.h>
#include <sys/types.h>
#else
#include <filesystem>
#endif
#if defined(_MSC_VER)
#include <share.h>
#endif

namespace kvSubstance {

namespace {

using Bytes = kv::vector<char>;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Asked before opening: to open a pipe would wait for its other end. On Windows not through the filesystem
// library: some implementations of it disregard the active code page.
bool isRegularFile(const kvString::CString& path) {
#if defined(_WIN32)
    struct _stat64 status {};
    return _stat64(path.asChar(), &status) == 0 && (status.st_mode & _S_IFMT) == _S_IFREG;
#else
    std::error_code error;
    return std::filesystem::is_regular_file(path.asChar(), error);
#endif
}

bool seek(std::FILE* file, int origin) {
#if defined(_WIN32)
    return _fseeki64(file, 0, origin) == 0;
#else
    return fseeko(file, 0, origin) == 0;
#endif
}

std::int64_t position(std::FILE* file) {
#if defined(_WIN32)
    return _ftelli64(file);
#else
    return ftello(file);
#endif
}

std::ifstream openShared(const kvString::CString& path) {
    const auto mode = std::ios::in | std::ios::binary;
#if defined(_MSC_VER)
    return std::ifstream(path.asChar(), mode, _SH_DENYNO);
#else
    return std::ifstream(path.asChar(), mode); // files are shared anyway, or there is no way to ask
#endif
}

} // namespace

void readSubstanceContent(const kvString::IString& path, Bytes& content) {
    const kvString::CString name = path.asMultibyte(kvString::EncodingMultibyte);
    if (!isRegularFile(name)) return;
    const File file(std::fopen(name.asChar(), "rb"));
    if (!file || !seek(file.get(), SEEK_END)) return;
    const std::int64_t size = position(file.get());
    if (size < 0 || !seek(file.get(), SEEK_SET)) return;
    Bytes bytes(static_cast<size_t>(size));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    content = std::move(bytes);
}

void readSubstanceContentAsChar(const kvString::IString& path, Bytes& content) {
    content.clear();
    const kvString::CString name = path.asMultibyte(kvString::EncodingMultibyte);
    if (!isRegularFile(name)) return;
    std::ifstream file = openShared(name);
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (!file || size < 0) return;
    file.seekg(0);
    Bytes bytes(static_cast<size_t>(size));
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(file.gcount()));
    content = std::move(bytes);
}

} // namespace kvSubstance
