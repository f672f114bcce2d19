#pragma once
// Decoded strings cut from a few shared blocks. Used on one thread at a time, by one reader.
//
// QString keeps even the shortest text in a heap block of its own, and a log entry holds
// thousands of short names, keys and values: one allocation and one free each made decoding
// slower than the text conversion itself. Here each string is an ordinary implicitly shared
// QString over its own slice of a larger block: changing it detaches it as usual, and a block
// is freed with the last string cut from it.
//
// Each string holds one reference to its block. Taking them one atomic increment at a time
// cost as much as the rest of the decoding, so references are bought in batches: the pool adds
// kPrepaidReferences to the block's count at once, hands one to each string it cuts, and gives
// back those it did not use when it moves on. The block's own reference, held by the pool until
// then, keeps the count above zero meanwhile.

#include <QString>
#include <QStringDecoder>

#include <algorithm>

class LFTStringPool
{
public:
    // A block holds at most this many UTF-16 units unless one string needs more, so a single
    // long-lived string keeps little memory alive.
    static constexpr qsizetype kBlockUnits = 16 * 1024;
    static constexpr int kPrepaidReferences = 4096;

    LFTStringPool() = default;
    ~LFTStringPool() { releasePrepaidReferences(); }
    Q_DISABLE_COPY_MOVE(LFTStringPool)  // two pools would write into the same free room

    // The UTF-8 bytes as text, decoded as QString::fromUtf8 does. `bytesAfter` says how much
    // input may still follow, so the last block of a small message stays small.
    QString fromUtf8(const char *bytes, qsizetype size, qsizetype bytesAfter);

private:
    void startBlock(qsizetype units);
    void releasePrepaidReferences();

    QString m_block;
    QTypedArrayData<char16_t> *m_header = nullptr;   // m_block's shared header
    int m_prepaid = 0;                                // references bought and not yet handed out
    char16_t *m_next = nullptr;  // unused room in m_block, which no string covers
    char16_t *m_end = nullptr;
    // Stateless like QString::fromUtf8: a leading byte order mark is dropped and bad bytes
    // become replacement characters in every string alike.
    QStringDecoder m_decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
};

// Inline: it runs for every string read.
inline QString LFTStringPool::fromUtf8(const char *bytes, qsizetype size, qsizetype bytesAfter)
{
    // Room for the text and the null that QString::utf16() promises after it: UTF-8 never
    // takes fewer bytes than its UTF-16 form takes units.
    const qsizetype needed = size + 1;
    if (m_end - m_next < needed)
        startBlock(std::max(needed, std::min(kBlockUnits, needed + bytesAfter)));

    char16_t *text = m_next;
    char16_t *textEnd = text + size;
    // Short ASCII text is the common case: widen it directly, without the general decoder's
    // set-up, and decode over it only if a byte was not ASCII after all.
    uchar highBits = 0;
    for (qsizetype i = 0; i < size; ++i) {
        highBits |= uchar(bytes[i]);
        text[i] = uchar(bytes[i]);
    }
    if (highBits >= 0x80) {
        textEnd = reinterpret_cast<char16_t *>(
            m_decoder.appendToBuffer(reinterpret_cast<QChar *>(text), QByteArrayView(bytes, size)));
    }
    *textEnd = u'\0';
    m_next = textEnd + 1;

    if (m_prepaid == 0) {
        m_header->ref_.fetchAndAddRelaxed(kPrepaidReferences);
        m_prepaid = kPrepaidReferences;
    }
    --m_prepaid;
    // Adopts one of the references bought above.
    return QString(QString::DataPointer(m_header, text, textEnd - text));
}
