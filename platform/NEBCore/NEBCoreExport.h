// Marks what this library exports; everything else stays hidden.

#ifndef NEBCORE_NEBCOREEXPORT_H
#define NEBCORE_NEBCOREEXPORT_H

#define NEBCORE_API __attribute__((visibility("default")))

#endif
