#include "LFTStringPool.h"

void LFTStringPool::startBlock(qsizetype units)
{
    releasePrepaidReferences();
    m_block = QString(units, Qt::Uninitialized);
    m_next = reinterpret_cast<char16_t *>(m_block.data());
    m_end = m_next + units;
    m_header = m_block.data_ptr().d_ptr();
}

void LFTStringPool::releasePrepaidReferences()
{
    // Never the last references: m_block still holds its own.
    if (m_prepaid > 0)
        m_header->ref_.fetchAndSubRelease(m_prepaid);
    m_prepaid = 0;
}
