#include "Benchmarks/RecordBenchmarks.h"

#include <mntent.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "Benchmarks/Documents.h"
#include "Benchmarks/Stopwatch.h"
#include "Frameworks/Configuration/SingletonBase.h"
#include "System/LoggingControl/LoggingControl.h"
#include "System/LoggingControl/RecordFormats.h"
#include "System/Messages/MeasurementMessage.h"

namespace {

constexpr int Records = 1000;
constexpr char CardDevice[] = "/dev/mmcblk0";
// A memory file system that every mount table lists replaces the card.
constexpr char MountPath[] = "/dev/shm";

}  // namespace

// This machine has no card: the check for one runs and succeeds. See the link options.
extern "C" {
int __real_stat64(const char* path, struct stat64* status);
int __wrap_stat64(const char* path, struct stat64* status);
int __wrap_umount(const char* path);

int __wrap_stat64(const char* path, struct stat64* status) {
    const int result = __real_stat64(path, status);
    if (std::strcmp(path, CardDevice) != 0) {
        return result;
    }
    status->st_mode = S_IFBLK;
    return 0;
}

int __wrap_umount(const char* /*path*/) { return 0; }
}

namespace {

MeasurementResults Results() {
    MeasurementResults results;
    results.SetDarkCount(123456.789);
    results.SetReferenceCount(6543210.123);
    results.SetSampleCount(4321098.765);
    results.SetAbsorbance(0.184523);
    results.SetChlorine(1.234567);
    results.SetMeasurementIndex(4711);
    return results;
}

// A file next to those of the card, removed at the end. It must have grown.
class DayFile {
public:
    explicit DayFile(std::string path) : m_path(std::move(path)) {}
    DayFile(const DayFile&) = delete;
    DayFile& operator=(const DayFile&) = delete;
    ~DayFile() {
        struct stat status {};
        if (stat(m_path.c_str(), &status) != 0 || status.st_size < Records) {
            EndForFailure("no records in " + m_path);
        }
        std::remove(m_path.c_str());
    }

    const char* GetPath() const { return m_path.c_str(); }

private:
    std::string m_path;
};

// As on the analyzer: the time zone may change at any time and is read for each record.
tm LocalTime(std::time_t time) {
    tm local{};
    tzset();
    localtime_r(&time, &local);
    return local;
}

std::string FileName() { return "benchmarks-" + std::to_string(getpid()) + ".csv"; }

std::string PathOfDay() {
    const tm local = LocalTime(std::time(nullptr));
    char date[16];
    std::strftime(date, sizeof date, "%Y-%m-%d_", &local);
    return std::string(MountPath) + "/" + date + FileName();
}

// The fields of a record as one would print them.
bool PrintRecord(std::FILE* file, const MeasurementResults& results) {
    const tm local = LocalTime(results.GetTime().GetSeconds());
    char date[64];
    std::strftime(date, sizeof date, "%Z %Y-%m-%d %H:%M:%S", &local);
    const int printed = std::fprintf(
        file, "%s,%20.10f,%f,%f,%f,%f,%f,%u,%u,%u\r\n", date, results.GetTime().GetXcelTime(), results.GetAbsorbance(),
        results.GetChlorine(), results.GetDarkCount(), results.GetReferenceCount(), results.GetSampleCount(),
        results.GetMeasurementIndex(), static_cast<unsigned>(results.GetTime().GetSeconds()),
        static_cast<unsigned>(results.GetTime().GetNanoSeconds()));
    return printed > 0 && std::fflush(file) == 0;
}

bool IsMounted() {
    std::FILE* table = setmntent("/etc/mtab", "r");
    if (table == nullptr) {
        return false;
    }
    char line[4096];
    mntent entry{};
    bool isFound = false;
    while (!isFound && getmntent_r(table, &entry, line, sizeof line) != nullptr) {
        isFound = std::strcmp(entry.mnt_dir, MountPath) == 0;
    }
    endmntent(table);
    return isFound;
}

int Today() { return LocalTime(std::time(nullptr)).tm_mday; }

std::unique_ptr<SystemConfigurationFile> Settings() {
    const std::string path = std::string(MountPath) + "/" + FileName() + ".xml";
    std::ofstream(path) << "<ROOT_ANALYZER>\n<LOGGING_INFO>\n"
                           "<INFO_ITEM name=\"LoggingLevel\" value=\"INFORMATIONAL_LOG_LEVEL\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementData\" value=\"true\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementDataFileFormat\" value=\"CSV\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementStepData\" value=\"false\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementStepDataFileFormat\" value=\"CSV\"/>\n"
                           "<INFO_ITEM name=\"LogStatusData\" value=\"false\"/>\n"
                           "<INFO_ITEM name=\"LogStatusDataFileFormat\" value=\"CSV\"/>\n"
                           "<INFO_ITEM name=\"LogDataFilePath\" value=\""
                        << MountPath
                        << "\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementDataFileName\" value=\""
                        << FileName()
                        << "\"/>\n"
                           "<INFO_ITEM name=\"LogMeasurementStepDataFileName\" value=\"Step.csv\"/>\n"
                           "<INFO_ITEM name=\"LogStatusDataFileName\" value=\"Status.csv\"/>\n"
                           "</LOGGING_INFO>\n</ROOT_ANALYZER>\n";
    auto file = std::make_unique<SystemConfigurationFile>();
    if (!file->Load(path)) {
        EndForFailure("can't read " + path);
    }
    std::remove(path.c_str());
    return file;
}

template <class Write>
double SecondsOnDayFile(int buffering, const Write& write) {
    const DayFile path(PathOfDay());
    const MeasurementResults results = Results();
    std::FILE* file = std::fopen(path.GetPath(), "a");
    if (file == nullptr) {
        EndForFailure(std::string("can't write ") + path.GetPath());
    }
    std::setvbuf(file, nullptr, buffering, BUFSIZ);
    const double seconds = SecondsEach(Records, [&] { write(file, path.GetPath(), results); });
    std::fclose(file);
    return seconds;
}

}  // namespace

double WriteRecordOurs() {
    // Without a buffer, as the files of the day.
    return SecondsOnDayFile(_IONBF, [](std::FILE* file, const char*, const MeasurementResults& results) {
        const StdString record = MeasurementRecord(results);
        std::fwrite(record.CString(), 1, record.Text().size(), file);
        std::fflush(file);
    });
}

double WriteRecordPrintf() {
    return SecondsOnDayFile(
        _IOFBF, [](std::FILE* file, const char*, const MeasurementResults& results) { PrintRecord(file, results); });
}

double LogRecordOurs() {
    const DayFile path(PathOfDay());
    SingletonBase::SetSystemConfiguration(Settings());
    SingletonBase::GetSystemConfiguration()->GetXML();
    LoggingControl logging;
    logging.Kill();
    pthread_join(logging.GetThreadId(), nullptr);  // it has read its settings; from here on this thread takes its part
    MeasurementMessage message;
    message.SetMeasurementResults(Results());
    const double seconds = SecondsEach(Records, [&logging, &message] { logging.ProcessDataMessage(&message); });
    SingletonBase::SetSystemConfiguration(nullptr);
    return seconds;
}

double LogRecordPrintf() {
    const int day = Today();
    return SecondsOnDayFile(_IOFBF, [day](std::FILE* file, const char* path, const MeasurementResults& results) {
        struct stat status {};
        const bool isPresent = stat(CardDevice, &status) == 0 || errno == ENOENT;
        if (isPresent && IsMounted() && Today() == day && stat(path, &status) == 0) {
            if (status.st_size == 0) {
                std::fputs("Text Date / Time,Xcel Time,Absorbance\r\n", file);
            }
            PrintRecord(file, results);
        }
    });
}
