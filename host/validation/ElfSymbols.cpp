#include "host/validation/ElfSymbols.h"
#include <cstring>
#include <elf.h>
#include <fstream>
#include <stdexcept>

namespace fernwick::validation {

namespace {

/// A file that is read by offsets, none of which is trusted.
class File {
public:
    explicit File(const std::filesystem::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        fBytes.assign(std::istreambuf_iterator<char>(stream), {});
    }

    template <class Record> Record At(uint64_t offset) const
    {
        if (offset > fBytes.size() || fBytes.size() - offset < sizeof(Record))
            throw std::runtime_error("the file is cut");
        Record record;
        std::memcpy(&record, fBytes.data() + offset, sizeof record);
        return record;
    }
    /// The text up to the next zero byte.
    std::string TextAt(uint64_t offset) const
    {
        At<char>(offset);
        return {fBytes.data() + offset, strnlen(fBytes.data() + offset, fBytes.size() - offset)};
    }

private:
    std::vector<char> fBytes;
};

bool IsExported(const Elf64_Sym& symbol)
{
    const unsigned char binding = ELF64_ST_BIND(symbol.st_info);
    const unsigned char visibility = ELF64_ST_VISIBILITY(symbol.st_other);
    return symbol.st_shndx != SHN_UNDEF && binding != STB_LOCAL
        && (visibility == STV_DEFAULT || visibility == STV_PROTECTED);
}

} // namespace

std::vector<std::string> ExportedNames(const std::filesystem::path& path)
{
    const File file(path);
    const auto head = file.At<Elf64_Ehdr>(0);
    if (std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 || head.e_ident[EI_CLASS] != ELFCLASS64)
        throw std::runtime_error("is no 64-bit ELF file");
    const auto sectionAt
        = [&](uint64_t index) { return file.At<Elf64_Shdr>(head.e_shoff + index * sizeof(Elf64_Shdr)); };
    std::vector<std::string> names;
    for (uint64_t index = 0; index < head.e_shnum; ++index) {
        const Elf64_Shdr section = sectionAt(index);
        if (section.sh_type != SHT_DYNSYM)
            continue;
        const Elf64_Shdr texts = sectionAt(section.sh_link);
        for (uint64_t offset = 0; offset < section.sh_size; offset += sizeof(Elf64_Sym)) {
            const auto symbol = file.At<Elf64_Sym>(section.sh_offset + offset);
            if (IsExported(symbol))
                names.push_back(file.TextAt(texts.sh_offset + symbol.st_name));
        }
    }
    return names;
}

} // namespace fernwick::validation
