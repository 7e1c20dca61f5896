#include "OJDStreamsDLL/OJDFilterOutputStream.h"

OJDFilterOutputStream::~OJDFilterOutputStream() = default;
