#include "programs/tools/digest.h"

#include <openssl/evp.h>

#include "platform/text/exceptions.h"

namespace vyn {

std::string Sha256(std::string_view bytes) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest, &size, EVP_sha256(), nullptr) != 1)
        throw Exception("The SHA-256 digest is not available");
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (unsigned int i = 0; i < size; ++i) {
        text += digits[digest[i] >> 4];
        text += digits[digest[i] & 15];
    }
    return text;
}

}  // namespace vyn
