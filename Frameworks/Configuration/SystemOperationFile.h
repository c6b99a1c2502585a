// The run counters of the analyzer, which survive a restart: one document, kept in two files. Each save rewrites the
// files in place, one after the other, so that one of them is sound if a save is interrupted. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "Frameworks/Configuration/ConfigurationBase.h"

class SystemOperationFile final : public ConfigurationBase {
public:
    SystemOperationFile(const SystemOperationFile&) = delete;
    SystemOperationFile& operator=(const SystemOperationFile&) = delete;
    ~SystemOperationFile() override;

    // The one object, made on the first call from the file, else from its backup, else from zero; it lives to the end
    // of the process. Null if the file has no such content; the next call tries again.
    static SystemOperationFile* GetInstance();

    // Writes both files. Returns whether the second was written; logs nothing.
    bool Save();

    // Empty for an unknown item.
    StdString ReadItem(const StdString& name) const;
    // Changes the document; Save writes it to the files. Returns false for an unknown item.
    bool WriteItem(const StdString& name, const StdString& text);

    // In decimal; the sum wraps at 32 bits. Returns false for an unknown item.
    bool AddToUnsignedCounter(const StdString& name, std::uint32_t amount);
    // With two decimal places. Returns false for an unknown item.
    bool AddToFloatCounter(const StdString& name, double amount);

private:
    SystemOperationFile();

    bool Load();
    bool EnterRoot();
    bool ReadSection();

    std::unique_ptr<XmlDocument> m_ownedDocument;
};
