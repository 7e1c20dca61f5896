// Owns a file descriptor.

#ifndef ARXGATE_DESCRIPTOR_H
#define ARXGATE_DESCRIPTOR_H

#include <string>
#include <utility>

#include <unistd.h>

class Descriptor
{
public:
    // Takes the descriptor over; a negative one means that there is none.
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor& operator=(Descriptor&&) = delete;

    explicit operator bool() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    // A path to the open file, for libraries that open by name. It leads to this very file, whatever happens
    // to its name meanwhile, and needs no escaping anywhere.
    std::string getPath() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

#endif
