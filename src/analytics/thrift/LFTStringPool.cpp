#include "LFTStringPool.h"

void LFTStringPool::startBlock(qsizetype units)
{
    m_block = QString(units, Qt::Uninitialized);
    m_next = reinterpret_cast<char16_t *>(m_block.data());
    m_end = m_next + units;
}
