#include "OJDStreamsDLL/OJDOutputStream.h"

OJDOutputStream::~OJDOutputStream() = default;
