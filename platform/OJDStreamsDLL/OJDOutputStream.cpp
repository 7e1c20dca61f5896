#include "OJDStreamsDLL/OJDOutputStream.h"

OJDOutputStream::~OJDOutputStream() = default;

void OJDOutputStream::flush() {}

void OJDOutputStream::close() {}
