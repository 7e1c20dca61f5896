// Marks what this library shows to others; everything else stays hidden.

#ifndef NEBCORE_NEBCOREEXPORT_H
#define NEBCORE_NEBCOREEXPORT_H

#define NEBCORE_API __attribute__((visibility("default")))

#endif
