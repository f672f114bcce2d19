#include "DesCbc.h"

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <memory>

namespace {

struct LegacyDes
{
    OSSL_LIB_CTX *context = nullptr;
    EVP_CIPHER *cipher = nullptr;

    LegacyDes()
    {
        context = OSSL_LIB_CTX_new();
        if (!context)
            return;
        if (!OSSL_PROVIDER_load(context, "legacy") || !OSSL_PROVIDER_load(context, "default"))
            return;
        cipher = EVP_CIPHER_fetch(context, "DES-CBC", nullptr);
    }
    // Lives for the whole process: freeing providers during static destruction races with
    // OpenSSL's own clean-up at exit.
};

const EVP_CIPHER *desCbc()
{
    static const LegacyDes des;
    return des.cipher;
}

struct CipherContextFree
{
    void operator()(EVP_CIPHER_CTX *ctx) const { EVP_CIPHER_CTX_free(ctx); }
};

} // namespace

QByteArray DesCbc::run(Direction direction, const uint8_t key[8], const uint8_t iv[8],
                       const QByteArray &input, qsizetype capacity)
{
    const EVP_CIPHER *cipher = desCbc();
    if (!cipher)
        return {};
    std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree> ctx(EVP_CIPHER_CTX_new());
    const int encrypt = direction == Direction::Encrypt ? 1 : 0;
    if (!ctx || EVP_CipherInit_ex2(ctx.get(), cipher, key, iv, encrypt, nullptr) != 1)
        return {};

    // OpenSSL may write up to one block beyond the input while deciphering; give it room
    // and then hold the result to the caller's capacity, as a fixed-size buffer would.
    QByteArray out(capacity + 8, '\0');
    auto *o = reinterpret_cast<unsigned char *>(out.data());
    int produced = 0;
    int tail = 0;
    if (EVP_CipherUpdate(ctx.get(), o, &produced,
                         reinterpret_cast<const unsigned char *>(input.constData()),
                         int(input.size())) != 1
        || EVP_CipherFinal_ex(ctx.get(), o + produced, &tail) != 1) {
        return {};
    }
    const qsizetype total = qsizetype(produced) + tail;
    if (total > capacity)
        return {};
    out.truncate(total);
    return out;
}
