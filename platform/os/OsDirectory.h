// The current directory under the name that the library calls on every platform. Any thread may call.

#ifndef OS_OSDIRECTORY_H
#define OS_OSDIRECTORY_H

// Writes the process's current directory, absolute and terminated, into the size bytes at buffer and gives
// buffer back. Null, with the reason in errno, if it can't be read or doesn't fit (ERANGE), or if there is no
// buffer; what buffer holds is then undefined.
extern "C" __attribute__((visibility("default"))) char* _getcwd(char* buffer, int size);

#endif
