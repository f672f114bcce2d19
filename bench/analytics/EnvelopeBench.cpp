// Building the envelope of a 1,000-event log entry (compress, digests, signature, AES, encode,
// with the settings it reads and writes) against the same work done directly: zlib compress2,
// AES-128-CBC through OpenSSL EVP and the two MD5 digests, on the same bytes, in the same run.
// Prints both and the ratio.

#include "LFAnalyticsApp.h"
#include "LFAnalyticsContext.h"
#include "LFAnalyticsEnvelope.h"
#include "LogEntrySample.h"
#include "RatioReporter.h"
#include "RepeatedRuns.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <zlib.h>

#include <cstdio>

namespace {
const QByteArray kKey = QByteArray::fromHex("00112233445566778899aabbccddeeff");
const QByteArray kIv = QByteArray::fromHex("3e7a19c4d20b8f56a1c7e04b92d36f18");

const QByteArray &entryBytes()
{
    static const QByteArray bytes = LFTEncode(benchentry::ourEntry());
    return bytes;
}

void BM_Ours_Envelope(benchmark::State &state)
{
    QTemporaryDir folder;
    LFAnalyticsOptions options;
    options.configStore = std::make_shared<UserDefaults>(folder.filePath(QStringLiteral("config.ini")));
    options.cacheDirectory = folder.filePath(QStringLiteral("caches"));
    LFAnalyticsContext context(std::move(options));
    context.app().setAppid(QStringLiteral("3c1f9a27b84e0d65a2f7c913"));
    context.app().setEncryptEnabled(true);
    for (auto _ : state) {
        QByteArray envelope = context.envelope().makeEnvelopeData(entryBytes());
        benchmark::DoNotOptimize(envelope.constData());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * entryBytes().size());
}

void BM_Raw_ZlibAes(benchmark::State &state)
{
    const QByteArray &entry = entryBytes();
    QByteArray compressed(qsizetype(compressBound(uLong(entry.size()))), Qt::Uninitialized);
    QByteArray encrypted(compressed.size() + EVP_MAX_BLOCK_LENGTH, Qt::Uninitialized);
    EVP_CIPHER_CTX *cipher = EVP_CIPHER_CTX_new();
    for (auto _ : state) {
        uLongf size = uLongf(compressed.size());
        compress2(reinterpret_cast<Bytef *>(compressed.data()), &size,
                  reinterpret_cast<const Bytef *>(entry.constData()), uLong(entry.size()), Z_DEFAULT_COMPRESSION);
        int written = 0;
        int last = 0;
        auto *out = reinterpret_cast<unsigned char *>(encrypted.data());
        EVP_EncryptInit_ex(cipher, EVP_aes_128_cbc(), nullptr, reinterpret_cast<const unsigned char *>(kKey.constData()),
                           reinterpret_cast<const unsigned char *>(kIv.constData()));
        EVP_EncryptUpdate(cipher, out, &written, reinterpret_cast<const unsigned char *>(compressed.constData()), int(size));
        EVP_EncryptFinal_ex(cipher, out + written, &last);
        const QByteArray digest = QCryptographicHash::hash(QByteArrayView(encrypted.constData(), written + last),
                                                           QCryptographicHash::Md5);
        benchmark::DoNotOptimize(digest.constData());
    }
    EVP_CIPHER_CTX_free(cipher);
    state.SetBytesProcessed(int64_t(state.iterations()) * entry.size());
}

BENCHMARK(BM_Ours_Envelope);
BENCHMARK(BM_Raw_ZlibAes);
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::printf("log entry: %lld bytes encoded\n", static_cast<long long>(entryBytes().size()));
    std::vector<char *> arguments = withRepeatedRuns(argc, argv);
    int count = int(arguments.size()) - 1;
    benchmark::Initialize(&count, arguments.data());
    RatioReporter reporter({{"Envelope", "BM_Ours_Envelope", "BM_Raw_ZlibAes", "raw zlib + AES"}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
