// What Windows asks of a library with threads.
//
// When a process ends there, the system first ends all threads but one, wherever they are, and then lets the
// libraries destroy their static objects. A lock may be held for ever by then, and nobody is left to join.
// When a library is unloaded its threads still run, but the one that unloads holds the lock that they need to
// end; and whatever they do next they do in code that is gone.
#pragma once

namespace support {

// True once the process has lost its other threads. From then on take no lock, join nothing, and leave memory
// and handles to the system. Safe to ask at any time. Always false where static objects die among threads
// that still run.
bool isProcessEnding();

// Keeps the library that this code is in loaded until the process ends. To be called before its first thread
// starts. Does nothing where unloading can wait for threads.
void stayLoaded();

} // namespace support
