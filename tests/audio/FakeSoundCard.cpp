#include "audio/FakeSoundCard.h"

#include <cstring>

namespace {

class FakeStream final : public SoundStream
{
public:
    explicit FakeStream(QIODevice *device)
        : m_device(device)
    {
    }
    ~FakeStream() override { delete m_device; }
    [[nodiscard]] QIODevice *device() const override { return m_device; }
    [[nodiscard]] int bytesFree() const override
    {
        const auto *output = qobject_cast<const FakeOutput *>(m_device.data());
        return output ? output->room : SoundStream::bytesFree();
    }

private:
    QPointer<QIODevice> m_device;
};

} // namespace

qint64 FakeInput::readData(char *data, qint64 size)
{
    ++reads;
    const int count = qMin(pending.size(), qMin(portion, static_cast<int>(size)));
    std::memcpy(data, pending.constData(), static_cast<std::size_t>(count));
    pending.remove(0, count);
    return count;
}

qint64 FakeOutput::writeData(const char *data, qint64 size)
{
    ++writes;
    const qint64 accepted = answers.isEmpty() ? size : answers.takeFirst();
    if (accepted > 0)
        played.append(data, static_cast<int>(accepted));
    return accepted;
}

std::unique_ptr<SoundStream> FakeSoundCard::openInput(const Request &request)
{
    inputRequests.append(request);
    if (!present)
        return nullptr;
    input = new FakeInput;
    return std::make_unique<FakeStream>(input);
}

std::unique_ptr<SoundStream> FakeSoundCard::openOutput(const Request &request)
{
    outputRequests.append(request);
    if (!present)
        return nullptr;
    output = new FakeOutput;
    return std::make_unique<FakeStream>(output);
}

void FakeSoundCard::unplug()
{
    present = false;
    delete input;
    delete output;
}
