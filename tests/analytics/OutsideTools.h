#pragma once
// Independent decoders for envelope bytes: Python's zlib for the compressed entity and the
// openssl command line for AES-128-CBC. Test thread.

#include "ProgramRun.h"

#include <QByteArray>
#include <QTemporaryDir>

namespace outsidetools {

// The zlib stream inflated by Python, or a null array when Python refuses it.
inline QByteArray pythonInflate(const QByteArray &stream)
{
    QTemporaryDir dir;
    QFile in(dir.filePath(QStringLiteral("in.z")));
    if (!in.open(QIODevice::WriteOnly) || in.write(stream) != stream.size())
        return {};
    in.close();
    const QString out = dir.filePath(QStringLiteral("out.bin"));
    const testsupport::ProgramResult result = testsupport::runProgram(
        QStringLiteral("python3"),
        {QStringLiteral("-c"),
         QStringLiteral("import sys, zlib; open(sys.argv[2], 'wb').write(zlib.decompress(open(sys.argv[1], 'rb').read()))"),
         in.fileName(), out});
    QFile file(out);
    if (result.exitCode != 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

// AES-128-CBC decrypted by `openssl enc`, or a null array when it refuses.
inline QByteArray opensslDecrypt(const QByteArray &data, const QByteArray &key, const QByteArray &iv)
{
    QTemporaryDir dir;
    QFile in(dir.filePath(QStringLiteral("in.bin")));
    if (!in.open(QIODevice::WriteOnly) || in.write(data) != data.size())
        return {};
    in.close();
    const QString out = dir.filePath(QStringLiteral("out.bin"));
    const testsupport::ProgramResult result = testsupport::runProgram(
        QStringLiteral("openssl"),
        {QStringLiteral("enc"), QStringLiteral("-d"), QStringLiteral("-aes-128-cbc"), QStringLiteral("-K"),
         QString::fromLatin1(key.toHex()), QStringLiteral("-iv"), QString::fromLatin1(iv.toHex()),
         QStringLiteral("-in"), in.fileName(), QStringLiteral("-out"), out});
    QFile file(out);
    if (result.exitCode != 0 || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

} // namespace outsidetools
