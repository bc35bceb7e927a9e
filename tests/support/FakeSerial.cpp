#include "support/FakeSerial.h"

#include "support/Wait.h"
#include "support/simserial/simserial.h"

namespace {

uint32_t bit(FakeSerial::Line line)
{
    switch (line) {
    case FakeSerial::Line::Cts: return SIMSERIAL_CTS;
    case FakeSerial::Line::Dcd: return SIMSERIAL_DCD;
    case FakeSerial::Line::Dsr: return SIMSERIAL_DSR;
    }
    return 0;
}

uint32_t load(const uint32_t &field)
{
    return __atomic_load_n(&field, __ATOMIC_SEQ_CST);
}

void store(uint32_t &field, uint32_t value)
{
    __atomic_store_n(&field, value, __ATOMIC_SEQ_CST);
}

} // namespace

QString FakeSerial::terminal() const
{
    return QString::fromLatin1(m_state->terminal);
}

void FakeSerial::set(Line line, bool high)
{
    if (high)
        __atomic_fetch_or(&m_state->inputs, bit(line), __ATOMIC_SEQ_CST);
    else
        __atomic_fetch_and(&m_state->inputs, ~bit(line), __ATOMIC_SEQ_CST);
}

void FakeSerial::flip(Line line, int reads)
{
    store(m_state->flippedInputs, bit(line));
    store(m_state->flippedReads, static_cast<uint32_t>(reads));
}

bool FakeSerial::isOpen() const
{
    return load(m_state->openCount) > 0;
}

bool FakeSerial::rts() const
{
    return load(m_state->outputs) & SIMSERIAL_RTS;
}

bool FakeSerial::dtr() const
{
    return load(m_state->outputs) & SIMSERIAL_DTR;
}

QVector<FakeSerial::Edge> FakeSerial::edges() const
{
    const uint32_t count = load(m_state->edgeCount);
    QVector<Edge> edges;
    for (uint32_t i = count > SIMSERIAL_EDGES ? count - SIMSERIAL_EDGES : 0; i < count; ++i) {
        const SimSerialEdge &edge = m_state->edges[i % SIMSERIAL_EDGES];
        edges.append({std::chrono::nanoseconds(edge.nanoseconds), (edge.outputs & SIMSERIAL_RTS) != 0,
                      (edge.outputs & SIMSERIAL_DTR) != 0});
    }
    return edges;
}

int FakeSerial::reads() const
{
    return static_cast<int>(load(m_state->readCount));
}

bool FakeSerial::waitForRts(bool high, std::chrono::milliseconds timeout) const
{
    return waitFor([this, high] { return rts() == high; }, timeout);
}
