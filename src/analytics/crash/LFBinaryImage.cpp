#include "LFBinaryImage.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <elf.h>
#include <link.h>

#include <cstring>

namespace {
constexpr uint32_t kGnuNoteName = 0x00554e47;   // "GNU\0" read as a little-endian word

struct MainImage
{
    bool found = false;
    ElfW(Addr) slide = 0;
    const unsigned char *header = nullptr;
    QByteArray buildId;
};

QByteArray buildIdOf(const dl_phdr_info *info)
{
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_NOTE)
            continue;
        const auto *note = reinterpret_cast<const char *>(info->dlpi_addr + segment.p_vaddr);
        const char *end = note + segment.p_memsz;
        while (note + sizeof(ElfW(Nhdr)) <= end) {
            const auto *header = reinterpret_cast<const ElfW(Nhdr) *>(note);
            const char *name = note + sizeof(ElfW(Nhdr));
            const char *desc = name + ((header->n_namesz + 3) & ~3u);
            uint32_t nameWord = 0;
            std::memcpy(&nameWord, name, std::min<size_t>(4, header->n_namesz));
            if (header->n_type == NT_GNU_BUILD_ID && header->n_namesz == 4 && nameWord == kGnuNoteName
                && desc + header->n_descsz <= end)
                return QByteArray(desc, int(header->n_descsz));
            note = desc + ((header->n_descsz + 3) & ~3u);
        }
    }
    return {};
}

int visitFirstImage(dl_phdr_info *info, size_t, void *data)
{
    auto *image = static_cast<MainImage *>(data);
    // The main program comes first.
    image->found = true;
    image->slide = info->dlpi_addr;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = info->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && segment.p_offset == 0) {
            image->header = reinterpret_cast<const unsigned char *>(info->dlpi_addr + segment.p_vaddr);
            break;
        }
    }
    image->buildId = buildIdOf(info);
    return 1;
}

QString address(quint64 value)
{
    return QStringLiteral("0x%1").arg(value, 16, 16, QLatin1Char('0'));
}
} // namespace

QString LFBinaryImage::cpuArchitecture(int machine, bool is64Bit)
{
    switch (machine) {
    case EM_386: return QStringLiteral("i386");
    case EM_X86_64: return QStringLiteral("x86_64");
    case EM_AARCH64: return QStringLiteral("arm64");
    case EM_ARM: return is64Bit ? QStringLiteral("arm-unknown") : QStringLiteral("armv7");
    case EM_PPC:
    case EM_PPC64: return QStringLiteral("powerpc");
    default: return QStringLiteral("???");
    }
}

QString LFBinaryImage::uuidText(const QByteArray &buildId)
{
    const QString hex = QString::fromLatin1(buildId.left(16).toHex().toUpper());
    if (hex.size() < 32)
        return hex;
    return QStringLiteral("%1-%2-%3-%4-%5")
        .arg(hex.mid(0, 8), hex.mid(8, 4), hex.mid(12, 4), hex.mid(16, 4), hex.mid(20, 12));
}

QVariantMap LFBinaryImage::mainImageInfo(const std::function<void(const QString &)> &log)
{
    QVariantMap info;
    MainImage image;
    dl_iterate_phdr(visitFirstImage, &image);
    if (!image.found || !image.header) {
        log(QStringLiteral("dladdr(%1, ...) failed").arg(quintptr(&visitFirstImage), 0, 16));
        return info;
    }
    const QString path = QCoreApplication::instance() ? QCoreApplication::applicationFilePath()
                                                      : QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    info.insert(QStringLiteral("image_name"), QFileInfo(path).fileName());
    info.insert(QStringLiteral("slide_address"), address(image.slide));
    info.insert(QStringLiteral("image_base_address"), address(quintptr(image.header)));
    if (std::memcmp(image.header, ELFMAG, SELFMAG) != 0) {
        uint32_t magic = 0;
        std::memcpy(&magic, image.header, sizeof magic);
        log(QStringLiteral("Invalid ELF header magic value: %1").arg(magic, 0, 16));
        return info;
    }
    const bool is64Bit = image.header[EI_CLASS] == ELFCLASS64;
    uint16_t machine = 0;
    // e_machine sits at the same place in 32- and 64-bit headers.
    std::memcpy(&machine, image.header + offsetof(Elf64_Ehdr, e_machine), sizeof machine);
    info.insert(QStringLiteral("cpu_arch"), cpuArchitecture(machine, is64Bit));
    if (!image.buildId.isEmpty())
        info.insert(QStringLiteral("binary_uuid"), uuidText(image.buildId));
    return info;
}
