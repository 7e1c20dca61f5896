// The least that packing and unpacking a tree can cost: whole files through zlib in one call each, with
// checksums, dates and folders, but without any error handling worth the name.

#ifndef ARXIUM_BENCH_RAWZIP_H
#define ARXIUM_BENCH_RAWZIP_H

#include <string>

void packRaw(std::string const& archive, std::string const& folder);
void unpackRaw(std::string const& archive, std::string const& folder);

#endif
