// Marks the classes that hosts use; everything else stays inside the library.

#ifndef ARXIUM_FRAME_ARXIUMEXPORT_H
#define ARXIUM_FRAME_ARXIUMEXPORT_H

#define ARXIUM_API __attribute__((visibility("default")))

#endif
