#include "tools/AtomicFile.h"

#include "tools/Failure.h"
#include "tools/FileNames.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <random>
#include <system_error>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tool {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw Failure(path + ": cannot be written: " + reason);
}

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

bool flushToDisk(std::FILE* file) {
#if defined(_WIN32)
    return std::fflush(file) == 0 && _commit(_fileno(file)) == 0;
#else
    return std::fflush(file) == 0 && fsync(fileno(file)) == 0;
#endif
}

fs::path folderOf(const fs::path& target) {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// The file that a name stands for, once its links are followed; the last of them may lead to none yet.
fs::path destination(const std::string& path) {
    constexpr int mostLinks = 40;
    fs::path target = pathOf(path);
    std::error_code error;
    for (int links = 0; fs::is_symlink(target, error); ++links) {
        if (links == mostLinks) fail(path, "it is a link that leads nowhere");
        target = folderOf(target) / fs::read_symlink(target, error);
        if (error) fail(path, error.message());
    }
    return target;
}

bool isSameFile(const fs::path& a, const fs::path& b) {
    std::error_code error;
    if (fs::equivalent(a, b, error) && !error) return true;
    return fs::weakly_canonical(a, error) == fs::weakly_canonical(b, error) && !error;
}

fs::path temporaryBeside(const fs::path& target) {
    std::random_device random;
    char name[64];
    std::snprintf(name, sizeof name, ".kvsubstance-%08x%08x.tmp", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    return folderOf(target) / name;
}

// Removes a file at the end of its life, unless it was kept.
class Temporary {
public:
    explicit Temporary(fs::path filePath)
        : path(std::move(filePath)) {}
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary() {
        std::error_code ignored;
        if (!path.empty()) fs::remove(path, ignored);
    }
    void keep() { path.clear(); }

private:
    fs::path path;
};

int writeAndFlush(const fs::path& path, std::string_view bytes) {
    errno = 0;
    std::FILE* const file = std::fopen(textOf(path).c_str(), "wb");
    if (!file) return errno;
    int error = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size() || !flushToDisk(file))
        error = errno ? errno : EIO;
    if (std::fclose(file) != 0 && !error) error = errno ? errno : EIO;
    return error;
}

} // namespace

void checkDestination(const std::string& path, const std::vector<std::string>& needed) {
    if (path.empty()) throw UsageError("the name of a file to write is empty");
    const fs::path target = destination(path);
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (fs::is_directory(status)) fail(path, "it is a folder; name a file in it");
    if (fs::exists(status) && !fs::is_regular_file(status)) fail(path, "it is no ordinary file");
    if (!fs::is_directory(folderOf(target), error))
        fail(path, "there is no folder " + textOf(folderOf(target)) + "; create it first");
    for (const std::string& other : needed)
        if (!other.empty() && isSameFile(target, pathOf(other)))
            fail(path, "the command needs " + other + " itself; name another file");
}

void writeFileAtomically(const std::string& path, std::string_view bytes) {
    checkDestination(path);
    const fs::path target = destination(path);
    const fs::path temporaryPath = temporaryBeside(target);
    Temporary temporary(temporaryPath);
    if (const int error = writeAndFlush(temporaryPath, bytes)) fail(path, reasonOf(error));

    std::error_code ignored;
    const fs::file_status old = fs::status(target, ignored);
    if (fs::exists(old)) fs::permissions(temporaryPath, old.permissions(), ignored);
    std::error_code error;
    fs::rename(temporaryPath, target, error);
    if (error) fail(path, error.message());
    temporary.keep();
}

} // namespace tool
