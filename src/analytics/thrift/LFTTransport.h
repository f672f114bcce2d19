#pragma once
// A byte source and sink under a protocol. Used on one thread at a time.

#include <QtGlobal>

#include <cstdint>

class LFTTransport
{
public:
    virtual ~LFTTransport() = default;

    // Reads exactly `length` bytes into buffer + offset, or throws LFTTransportException.
    virtual void readAll(uint8_t *buffer, qsizetype offset, qsizetype length) = 0;
    virtual void write(const uint8_t *data, qsizetype offset, qsizetype length) = 0;
    virtual void flush() = 0;
};
