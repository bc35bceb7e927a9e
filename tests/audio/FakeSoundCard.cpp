#include "audio/FakeSoundCard.h"

#include <cstring>

namespace {

class FakeStream final : public SoundStream
{
public:
    FakeStream(QIODevice *device, bool isOfNamedDevice)
        : m_device(device)
        , m_isOfNamedDevice(isOfNamedDevice)
    {
    }
    ~FakeStream() override { delete m_device; }
    [[nodiscard]] QIODevice *device() const override { return m_device; }
    [[nodiscard]] int bytesFree() const override
    {
        const auto *output = qobject_cast<const FakeOutput *>(m_device.data());
        return output ? output->room : SoundStream::bytesFree();
    }

    [[nodiscard]] bool isOfNamedDevice() const override { return m_isOfNamedDevice; }

private:
    QPointer<QIODevice> m_device;
    bool m_isOfNamedDevice;
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
    const bool isNamed = !named.isEmpty() && request.deviceName == named;
    if (!present || (request.onlyNamed && !isNamed))
        return nullptr;
    input = new FakeInput;
    return std::make_unique<FakeStream>(input, isNamed);
}

std::unique_ptr<SoundStream> FakeSoundCard::openOutput(const Request &request)
{
    outputRequests.append(request);
    const bool isNamed = !named.isEmpty() && request.deviceName == named;
    if (!present || (request.onlyNamed && !isNamed))
        return nullptr;
    output = new FakeOutput;
    return std::make_unique<FakeStream>(output, isNamed);
}

void FakeSoundCard::unplug()
{
    present = false;
    delete input;
    delete output;
}
