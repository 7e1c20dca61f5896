// The current directory under the name that the library calls on every platform. Any thread may call.

#ifndef OS_OSDIRECTORY_H
#define OS_OSDIRECTORY_H

// Writes the absolute, terminated path of the current directory into the size bytes at buffer and returns
// buffer. Returns null, with the reason in errno, if buffer is null, the path can't be read or doesn't fit
// (ERANGE); the contents of buffer are then undefined.
extern "C" __attribute__((visibility("default"))) char* _getcwd(char* buffer, int size);

#endif
