# The Debian 12 packages that the project is built with. To be sourced.
build_packages=(g++ cmake ninja-build libtinyxml-dev libboost1.81-dev libboost-thread1.81-dev
    libflatbuffers-dev flatbuffers-compiler libpng-dev libxxhash-dev libcli11-dev nlohmann-json3-dev libgtest-dev)
test_packages=(locales pkgconf)
clang_packages=(clang-14)
coverage_packages=(llvm-14 libclang-rt-14-dev)
fuzz_packages=(clang-14 libclang-rt-14-dev)
lint_packages=(clang-format-14 clang-tidy-14 doxygen)
abi_packages=(abigail-tools)
benchmark_packages=(libbenchmark-dev)
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64 dpkg-dev xz-utils)
header_packages=(libflatbuffers-dev libcli11-dev nlohmann-json3-dev libxxhash-dev) # serve any target
