// What systems ask of a library with threads.
//
// When a process ends on Windows, the system first ends all threads but one, wherever they are, and then lets
// the libraries destroy their static objects. A lock may be held for ever by then, and nobody is left to
// join. When a library is unloaded there its threads still run, but the one that unloads holds the lock that
// they need to end; and whatever they do next they do in code that is gone.
//
// Elsewhere a process may fork: the child has one thread, and of the others only the locks that they held.
#pragma once

namespace support {

// True once the process has lost its other threads: at its end on Windows; elsewhere in a child that was
// forked after prepareForThreads. From then on take no lock, join nothing, and leave memory and handles to
// the system. Safe to ask at any time.
bool isProcessEnding();

// To be called before a thread starts. On Windows it keeps the library that this code is in loaded until the
// process ends, because unloading cannot wait for threads.
void prepareForThreads();

} // namespace support
