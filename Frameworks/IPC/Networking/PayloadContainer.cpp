#include "Frameworks/IPC/Networking/PayloadContainer.h"

#include "Frameworks/Utilities/CRC32.h"
#include "Frameworks/Utilities/LittleEndian.h"

void PayloadContainer::Reset() {
    m_wire.clear();
    m_data.clear();
    m_length = 0;
    m_crc = 0xFFFFFFFF;
}

const std::vector<std::uint8_t>& PayloadContainer::WireForm() {
    m_wire = m_data;
    m_wire.resize(m_length + CRCSize);
    m_crc = CRC32().Compute(m_data);
    PutLittleEndian(&m_wire[m_length], CRCSize, m_crc);
    return m_wire;
}

void PayloadContainer::SetReceived(std::vector<std::uint8_t> bytes) {
    m_wire = std::move(bytes);
    m_wire.resize(std::min<std::size_t>(m_wire.size(), m_length + CRCSize));
}

const std::vector<std::uint8_t>& PayloadContainer::DataForm() {
    m_data = m_wire;
    m_data.resize(m_length);
    return m_data;
}

std::uint32_t PayloadContainer::ComputeCRC() {
    m_crc = CRC32().Compute(DataForm());
    return m_crc;
}

bool PayloadContainer::VerifyCRC() {
    std::uint8_t crc[CRCSize] = {};
    for (std::size_t at = m_length; at < m_wire.size(); ++at) {
        crc[at - m_length] = m_wire[at];
    }
    return CRC32().Check(DataForm(), static_cast<std::uint32_t>(GetLittleEndian(crc, CRCSize)));
}

StdString PayloadContainer::Text() {
    const std::vector<std::uint8_t>& data = DataForm();
    m_text = StdString(std::string(data.begin(), data.end()));
    return m_text;
}

void PayloadContainer::AppendTimeStamp(const TimeInfo& time) {
    AppendNumber(static_cast<std::uint32_t>(time.GetSeconds()), 4);
    AppendNumber(static_cast<std::uint32_t>(time.GetNanoSeconds()), 4);
}

void PayloadContainer::AppendText(const StdString& text) {
    AppendTimeStamp(TimeInfo());
    const std::string& bytes = text.Text();
    AppendData(reinterpret_cast<const std::uint8_t*>(bytes.c_str()), bytes.size() + 1);
    WireForm();
}

void PayloadContainer::AppendBytes(const std::vector<std::uint8_t>& bytes) {
    AppendTimeStamp(TimeInfo());
    AppendData(bytes.data(), bytes.size());
}

void PayloadContainer::AppendNumber(std::uint64_t value, std::size_t size) {
    std::uint8_t bytes[sizeof value] = {};
    PutLittleEndian(bytes, size, value);
    AppendData(bytes, size);
}

void PayloadContainer::AppendData(const std::uint8_t* data, std::size_t size) {
    m_data.insert(m_data.end(), data, data + size);
    m_length = static_cast<std::uint32_t>(m_data.size());
}
