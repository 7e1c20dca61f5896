#include "host/RunningLibrary.h"

#include "frame/Arxium.h"

RunningLibrary::RunningLibrary()
{
    Arxium::initialize();
}

RunningLibrary::~RunningLibrary()
{
    Arxium::terminate();
}
