// The product's DomWriter, as the library's own layer declares it.

#ifndef PRODUCT_NEBIDOM_DOMWRITER_H
#define PRODUCT_NEBIDOM_DOMWRITER_H

class DomWriter
{
public:
    DomWriter();
    virtual ~DomWriter();
    virtual void write(char const* data, int size) = 0;
    virtual void endline() = 0;
    virtual char const* getOutputEncoding();
};

#endif
