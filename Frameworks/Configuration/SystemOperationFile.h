// The counters of the analyzer's life, which outlast a restart: one document, kept in two files. Each save rewrites the
// files in place, one after the other, so that one of the two is sound wherever a save is cut. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "Frameworks/Configuration/ConfigurationBase.h"

class SystemOperationFile final : public ConfigurationBase {
public:
    SystemOperationFile(const SystemOperationFile&) = delete;
    SystemOperationFile& operator=(const SystemOperationFile&) = delete;
    ~SystemOperationFile() override;

    // The one object, made on the first call from the file, else from its backup, else from zero; it then lives to the
    // end of the process. Null where the file has no such content; the next call tries again.
    static SystemOperationFile* GetInstance();

    // Writes both files. Tells whether the second was written; nothing is logged.
    bool Save();

    // Empty for an unknown item.
    StdString ReadItem(const StdString& name) const;
    // Into the document; Save brings it to the files. False for an unknown item.
    bool WriteItem(const StdString& name, const StdString& text);

    // In decimal; the sum wraps behind 32 bits. False for an unknown item.
    bool AddToUnsignedCounter(const StdString& name, std::uint32_t amount);
    // With two digits behind the point. False for an unknown item.
    bool AddToFloatCounter(const StdString& name, double amount);

private:
    SystemOperationFile();

    bool Load();
    bool EnterRoot();
    bool ReadSection();

    std::unique_ptr<XmlDocument> m_ownedDocument;
};
