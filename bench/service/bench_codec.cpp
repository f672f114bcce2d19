// The payload codec (encipher + Base64, then decode + decipher) on a 300-byte JSON text,
// against the same work done directly with OpenSSL's EVP and Base64 calls.

#include "DesCryptUtil.h"
#include "RatioReporter.h"

#include <benchmark/benchmark.h>

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace {

QString payload300()
{
    QString json = QStringLiteral(R"({"sectionid":3,"imei":"2f1c0d6a9e8b7c6d5e4f3a2b1c0d9e8f7a6b5c4d",)"
                                  R"("devicetype":"IOS","userid":5120,"tid":4101,"content":")");
    while (json.toUtf8().size() < 290)
        json += QStringLiteral("回复");
    json += QStringLiteral(R"("})");
    return json;
}

void BM_DesCryptUtil(benchmark::State &state)
{
    const QString json = payload300();
    for (auto _ : state) {
        const std::optional<QString> cipher = DesCryptUtil::DesEncode(json, DesCryptUtil::kKey, DesCryptUtil::kIV);
        const std::optional<QString> plain = DesCryptUtil::DesDecode(*cipher, DesCryptUtil::kKey, DesCryptUtil::kIV);
        benchmark::DoNotOptimize(plain);
    }
    state.SetLabel(std::to_string(json.toUtf8().size()) + " bytes");
}
BENCHMARK(BM_DesCryptUtil);

// The floor: the same cipher and encoding with a prepared cipher object and raw buffers.
void BM_RawOpenSsl(benchmark::State &state)
{
    OSSL_LIB_CTX *ctx = OSSL_LIB_CTX_new();
    OSSL_PROVIDER_load(ctx, "legacy");
    OSSL_PROVIDER_load(ctx, "default");
    EVP_CIPHER *des = EVP_CIPHER_fetch(ctx, "DES-CBC", nullptr);
    const QByteArray plain = payload300().toUtf8();
    std::vector<unsigned char> cipher(plain.size() + 16), b64(plain.size() * 2 + 16), back(plain.size() + 16);
    std::vector<unsigned char> decoded(plain.size() + 16);

    for (auto _ : state) {
        EVP_CIPHER_CTX *c = EVP_CIPHER_CTX_new();
        int n = 0, tail = 0;
        EVP_CipherInit_ex2(c, des, DesCryptUtil::kKey, DesCryptUtil::kIV, 1, nullptr);
        EVP_CipherUpdate(c, cipher.data(), &n, reinterpret_cast<const unsigned char *>(plain.data()), int(plain.size()));
        EVP_CipherFinal_ex(c, cipher.data() + n, &tail);
        const int b64Length = EVP_EncodeBlock(b64.data(), cipher.data(), n + tail);
        const int decodedLength = EVP_DecodeBlock(decoded.data(), b64.data(), b64Length);
        EVP_CipherInit_ex2(c, des, DesCryptUtil::kKey, DesCryptUtil::kIV, 0, nullptr);
        int m = 0, tail2 = 0;
        // EVP_DecodeBlock keeps the padding's zero bytes; the cipher length is known here.
        EVP_CipherUpdate(c, back.data(), &m, decoded.data(), std::min(decodedLength, n + tail));
        EVP_CipherFinal_ex(c, back.data() + m, &tail2);
        EVP_CIPHER_CTX_free(c);
        benchmark::DoNotOptimize(back.data());
    }
    EVP_CIPHER_free(des);
    OSSL_LIB_CTX_free(ctx);
}
BENCHMARK(BM_RawOpenSsl);

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter("BM_DesCryptUtil", "BM_RawOpenSsl", "codec / raw OpenSSL time ratio");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
