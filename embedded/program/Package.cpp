#include "embedded/program/Package.h"

#include "embedded/program/FlatBufferBytes.h"
#include "embedded/program/package_generated.h"

namespace embedded {

namespace {

constexpr std::uint32_t packageVersion = 1;

} // namespace

std::vector<unsigned char> encodePackage(const Package& package) {
    flatbuffers::FlatBufferBuilder builder;
    const auto description = builder.CreateString(package.description);
    const auto assembly = builder.CreateVector(package.assembly);
    builder.Finish(format::CreatePackage(builder, packageVersion, description, assembly),
                   format::PackageIdentifier());
    return finishedBytes(builder);
}

std::optional<Package> decodePackage(const void* data, std::size_t size) {
    const std::vector<unsigned char> file = alignedCopy(data, size);
    const auto* root = verifiedRoot<format::Package>(file, format::PackageIdentifier());
    if (!root || root->version() != packageVersion) return std::nullopt;

    Package package;
    package.description = root->description()->str();
    if (package.description.find('\0') != std::string::npos) return std::nullopt;
    package.assembly.assign(root->assembly()->begin(), root->assembly()->end());
    return package;
}

} // namespace embedded
