#include "NEBIDOM/DomWriter.h"

DomWriter::~DomWriter() = default;
