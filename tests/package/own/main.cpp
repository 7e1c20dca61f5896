// A host of the product: what the library derives from DomWriter must sit on the product's own class.

#include <cstring>
#include <string>

#include "OJDStreamsDLL/OJDFileOutputStream.h"
#include "streams/ARXDomWriterOJDOutputStream.h"

#ifndef PRODUCT_NEBIDOM_DOMWRITER_H
#error "the stand-in's header hides the product's"
#endif

int main(int, char** arguments)
{
    OJDFileOutputStream file((std::string(arguments[1]) + "/text").c_str(), 0);
    ARXDomWriterOJDOutputStream adapter(file);
    DomWriter& writer = adapter;
    writer.write("<a/>", 4);
    return std::strcmp(writer.getOutputEncoding(), "the product's");
}
