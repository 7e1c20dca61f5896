// A file that is not complete: made under a random name, `.kry-` and 16 hexadecimal digits, and removed by
// destruction. Complete, it takes its real name. A process that is killed leaves it behind.

#ifndef KRY_CRYPTO_INTERFACE_KRYTEMPORARYFILE_H
#define KRY_CRYPTO_INTERFACE_KRYTEMPORARYFILE_H

#include <string>

#include "KRY_Crypto_Interface/KRYFile.h"

class KRYTemporaryFile
{
public:
    // The directory must outlive the object. name is the real one, without a directory; mode is subject to
    // the umask.
    KRYTemporaryFile(KRYFile& directory, std::string name, mode_t mode);
    ~KRYTemporaryFile();

    KRYTemporaryFile(KRYTemporaryFile const&) = delete;
    KRYTemporaryFile& operator=(KRYTemporaryFile const&) = delete;

    void write(unsigned char const* data, std::size_t size) { m_file.write(data, size); }

    // Both bring the file to the disk, give it its name, and bring that to the disk. replace takes the place
    // of a file of that name; offer leaves such a file as it is.
    void replace();
    void offer();

private:
    void complete();

    KRYFile& m_directory;
    std::string m_name;
    std::string m_temporaryName;  // empty once nothing has that name
    KRYFile m_file;
};

#endif
