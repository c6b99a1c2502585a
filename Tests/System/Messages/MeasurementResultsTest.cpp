#include "System/Messages/MeasurementResults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Frameworks/Xml/XmlDocument.h"
#include "System/Messages/AdcStatusInfo.h"
#include "System/Messages/DetectorInformation.h"

namespace {

constexpr double UsualCellConstant = 1714.818182;

class MeasurementRecord : public testing::Test {
protected:
    MeasurementRecord() {
        m_document.SetDocumentText("<LOG>\n</LOG>\n");
        m_document.FindElement("LOG");
        m_document.IntoElement();
        m_results.SetDocument(&m_document);
    }

    // The "value" that is written for a chlorine value.
    std::string Value(double chlorine) {
        m_results.SetChlorine(chlorine);
        EXPECT_TRUE(m_results.SetXML());
        return m_document.GetAttribute("value");
    }

    XmlDocument m_document;
    MeasurementResults m_results;
};

}  // namespace

TEST(MeasurementFormulas, give_half_the_light_its_absorbance_and_chlorine) {
    const double transmittance = Transmittance(100.0, 1100.0, 600.0);
    EXPECT_EQ(transmittance, 0.5);
    const double absorbance = Absorbance(transmittance);
    EXPECT_NEAR(absorbance, 0.30103, 0.000005);
    EXPECT_NEAR(Chlorine(UsualCellConstant, absorbance), 516.2, 0.05);
}

TEST(MeasurementFormulas, a_sample_at_the_dark_count_gives_negative_zeros) {
    EXPECT_EQ(Transmittance(100.0, 1100.0, 100.0), 1.0);
    const double absorbance = Absorbance(1.0);
    EXPECT_EQ(absorbance, 0.0);
    EXPECT_TRUE(std::signbit(absorbance));
    const double chlorine = Chlorine(UsualCellConstant, absorbance);
    EXPECT_EQ(chlorine, 0.0);
    EXPECT_TRUE(std::signbit(chlorine));
}

TEST(MeasurementFormulas, light_not_above_the_dark_count_gives_transmittance_one) {
    EXPECT_EQ(Transmittance(100.0, 1100.0, 99.0), 1.0);
    EXPECT_EQ(Transmittance(100.0, 100.0, 600.0), 1.0);
    EXPECT_EQ(Transmittance(100.0, 99.0, 600.0), 1.0);
    EXPECT_EQ(Transmittance(100.0, 50.0, 50.0), 1.0);
}

TEST(MeasurementFormulas, a_count_that_is_NaN_gives_transmittance_one) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Transmittance(none, 1100.0, 600.0), 1.0);
    EXPECT_EQ(Transmittance(100.0, none, 600.0), 1.0);
    EXPECT_EQ(Transmittance(100.0, 1100.0, none), 1.0);
}

TEST(MeasurementFormulas, a_sample_brighter_than_the_reference_gives_negative_values) {
    const double transmittance = Transmittance(100.0, 600.0, 1100.0);
    EXPECT_EQ(transmittance, 2.0);
    EXPECT_LT(Absorbance(transmittance), 0.0);
    EXPECT_LT(Chlorine(UsualCellConstant, Absorbance(transmittance)), 0.0);
}

TEST(MeasurementFormulas, negative_counts_are_counts_like_others) { EXPECT_EQ(Transmittance(-100.0, 100.0, 0.0), 0.5); }

TEST(MeasurementResults, have_a_marker_value_when_empty) {
    const TimeInfo before;
    const MeasurementResults results;
    EXPECT_EQ(results.GetChlorine(), 99999.9);
    EXPECT_EQ(results.GetAbsorbance(), 0.0);
    EXPECT_EQ(results.GetTransmittance(), 0.0);
    EXPECT_EQ(results.GetDarkCount(), 0.0);
    EXPECT_EQ(results.GetReferenceCount(), 0.0);
    EXPECT_EQ(results.GetSampleCount(), 0.0);
    EXPECT_EQ(results.GetMeasurementIndex(), 0U);
    EXPECT_TRUE(before <= results.GetTime());
    EXPECT_EQ(results.GetDocument(), nullptr);
}

TEST_F(MeasurementRecord, a_copy_has_all_members_and_the_document) {
    m_results.SetChlorine(1.0);
    m_results.SetAbsorbance(2.0);
    m_results.SetTransmittance(3.0);
    m_results.SetDarkCount(4.0);
    m_results.SetReferenceCount(5.0);
    m_results.SetSampleCount(6.0);
    m_results.SetMeasurementIndex(7);
    TimeInfo time;
    time = timespec{8, 9};
    m_results.SetTime(time);
    MeasurementResults copy;
    copy = m_results;
    EXPECT_EQ(copy.GetChlorine(), 1.0);
    EXPECT_EQ(copy.GetAbsorbance(), 2.0);
    EXPECT_EQ(copy.GetTransmittance(), 3.0);
    EXPECT_EQ(copy.GetDarkCount(), 4.0);
    EXPECT_EQ(copy.GetReferenceCount(), 5.0);
    EXPECT_EQ(copy.GetSampleCount(), 6.0);
    EXPECT_EQ(copy.GetMeasurementIndex(), 7U);
    EXPECT_EQ(copy.GetTime().GetSeconds(), 8);
    EXPECT_EQ(copy.GetTime().GetNanoSeconds(), 9);
    EXPECT_EQ(copy.GetDocument(), &m_document);
}

TEST_F(MeasurementRecord, is_written_with_its_attributes_in_order) {
    m_results.SetChlorine(321.5);
    m_results.SetMeasurementIndex(0x142);
    EXPECT_TRUE(m_results.SetXML());
    EXPECT_EQ(m_document.GetDocumentText(), "<LOG>\n<MEASUREMENT type=\"chlorineMeasurement\" value=\"A\" time=\"" +
                                                m_results.GetTime().GetTimeString(9).Text() +
                                                "\" index=\"B\"/>\n</LOG>\n");
    EXPECT_EQ(m_document.GetTagName(), "MEASUREMENT");
}

TEST_F(MeasurementRecord, is_written_behind_the_one_before) {
    m_results.SetMeasurementIndex('1');
    EXPECT_TRUE(m_results.SetXML());
    m_results.SetMeasurementIndex('2');
    EXPECT_TRUE(m_results.SetXML());
    m_document.ResetMainPosition();
    ASSERT_TRUE(m_document.FindElement("MEASUREMENT"));
    EXPECT_EQ(m_document.GetAttribute("index"), "1");
    ASSERT_TRUE(m_document.FindElement("MEASUREMENT"));
    EXPECT_EQ(m_document.GetAttribute("index"), "2");
}

TEST_F(MeasurementRecord, the_value_is_one_character_of_the_low_eight_bits) {
    EXPECT_EQ(Value(321.5), "A");
    EXPECT_EQ(Value(65.999), "A");
    EXPECT_EQ(Value(4294967295.0), "\xFF");
    EXPECT_EQ(Value(99999.9), "\x9F");
}

TEST_F(MeasurementRecord, characters_with_a_meaning_in_xml_read_back_as_they_are) {
    EXPECT_EQ(Value('"'), "\"");
    EXPECT_EQ(Value('<'), "<");
    EXPECT_EQ(Value('&'), "&");
}

TEST_F(MeasurementRecord, a_chlorine_value_out_of_range_is_limited) {
    EXPECT_EQ(Value(-321.5), "");
    EXPECT_EQ(Value(1e300), "\xFF");
    EXPECT_EQ(Value(std::numeric_limits<double>::infinity()), "\xFF");
    EXPECT_EQ(Value(std::numeric_limits<double>::quiet_NaN()), "");
}

TEST(MeasurementResults, without_a_document_are_not_written) {
    MeasurementResults results;
    EXPECT_FALSE(results.SetXML());
}

TEST(DetectorInformation, holds_a_count_and_its_time) {
    TimeInfo time;
    time = timespec{8, 9};
    DetectorInformation sample;
    EXPECT_EQ(sample.GetCount(), 0.0);
    sample.SetCount(-8388608.0);
    sample.SetTime(time);
    const DetectorInformation copy = sample;
    EXPECT_EQ(copy.GetCount(), -8388608.0);
    EXPECT_TRUE(copy.GetTime() == time);
}

TEST(AdcStatusInfo, a_signal_id_above_sixteen_bits_is_held_at_their_end) {
    AdcStatusInfo info;
    EXPECT_EQ(info.GetSignalId(), 0);
    info.SetSignalId(10070);
    EXPECT_EQ(info.GetSignalId(), 10070);
    info.SetSignalId(65535);
    EXPECT_EQ(info.GetSignalId(), 65535);
    info.SetSignalId(65536);
    EXPECT_EQ(info.GetSignalId(), 65535);
    info.SetSignalId(0xFFFFFFFF);
    EXPECT_EQ(info.GetSignalId(), 65535);
}

TEST(AdcStatusInfo, a_sample_count_above_eight_bits_is_held_at_their_end) {
    AdcStatusInfo info;
    EXPECT_EQ(info.GetSampleCount(), 0U);
    info.SetSampleCount(255);
    EXPECT_EQ(info.GetSampleCount(), 255U);
    info.SetSampleCount(256);
    EXPECT_EQ(info.GetSampleCount(), 255U);
    info.SetSampleCount(0xFFFFFFFF);
    EXPECT_EQ(info.GetSampleCount(), 255U);
}

TEST(AdcStatusInfo, the_spare_value_is_never_below_zero) {
    AdcStatusInfo info;
    EXPECT_EQ(info.GetSpareValue(), 0.0F);
    info.SetSpareValue(1.5F);
    EXPECT_EQ(info.GetSpareValue(), 1.5F);
    info.SetSpareValue(-1.5F);
    EXPECT_EQ(info.GetSpareValue(), 0.0F);
    info.SetSpareValue(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(info.GetSpareValue(), 0.0F);
}

TEST(AdcStatusInfo, a_copy_has_the_interval_and_the_readings_in_order) {
    AdcStatusInfo info;
    info.SetSampleInterval(TimeSpec(1, 500000000));
    EXPECT_TRUE(info.AddReading(1, 2, 0x12345678));
    EXPECT_TRUE(info.AddReading(3, 4, -5));
    AdcStatusInfo copy;
    EXPECT_TRUE(copy.GetReadings().empty());
    copy = info;
    EXPECT_TRUE(info.AddReading(5, 6, 7));
    EXPECT_EQ(copy.GetSampleInterval().GetSeconds(), 1);
    EXPECT_EQ(copy.GetSampleInterval().GetNanoSeconds(), 500000000);
    ASSERT_EQ(copy.GetReadings().size(), 2U);
    EXPECT_EQ(copy.GetReadings()[0].seconds, 1);
    EXPECT_EQ(copy.GetReadings()[0].nanoSeconds, 2);
    EXPECT_EQ(copy.GetReadings()[0].value, 0x12345678);
    EXPECT_EQ(copy.GetReadings()[1].seconds, 3);
    EXPECT_EQ(copy.GetReadings()[1].nanoSeconds, 4);
    EXPECT_EQ(copy.GetReadings()[1].value, -5);
}
