/// @file
/// Reads package files into memory, for createSubstance.
///
/// Both functions give a file's bytes as they are, nothing added and no line ends translated. They fail
/// silently, for whatever is no regular file (a directory, a pipe) as for a file that cannot be opened; a
/// file that shrinks while it is read gives the bytes that were there. Memory that is not to be had throws
/// std::bad_alloc. The path is opened in the platform's encoding: on Windows a name that the active code page
/// cannot express is not found. From any thread.
#pragma once

#include "material/Export.h"
#include "platform/base.h"

namespace kvSubstance {

/// When the file cannot be read the content stays as it was.
KVSUBSTANCE_API void readSubstanceContent(const kvString::IString& path, kv::vector<char>& content);

/// When the file cannot be read the content is empty. On Windows others may read and write the file
/// meanwhile.
KVSUBSTANCE_API void readSubstanceContentAsChar(const kvString::IString& path, kv::vector<char>& content);

} // namespace kvSubstance
