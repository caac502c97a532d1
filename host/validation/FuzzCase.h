#pragma once
#include "host/validation/Probes.h"
#include "host/validation/Specimen.h"

namespace fernwick::validation {

class Sheet;

/// A random record of a class with what is plugged into it and the scene that its samples lie in. All follows from
/// the numbers given.
class FuzzCase {
public:
    FuzzCase(const ParameterTable& table, const Random& random);
    FuzzCase(const ParameterTable& table, uint64_t seed) : FuzzCase(table, Random(seed)) { }

    /// The record's fields without slots, in its order.
    size_t FieldCount() const { return fFills.size(); }
    const Field& FieldAt(size_t index) const { return *fFills[index].field; }

    /// Writes the fields for which `kept` is true and plugs the slots. The others keep what they hold.
    void Apply(const Specimen& object, const std::vector<bool>& kept) const;
    void Apply(const Specimen& object) const { Apply(object, std::vector<bool>(FieldCount(), true)); }

    /// @param log  takes down what the case's shaders and its scene are asked from now on; null for none
    void Listen(CallLog* log);

    /// Listens as long as it lives.
    class Listening {
    public:
        Listening(FuzzCase& fuzz, CallLog& log) : fFuzz(fuzz) { fuzz.Listen(&log); }
        ~Listening() { fFuzz.Listen(nullptr); }
        Listening(const Listening&) = delete;
        Listening& operator=(const Listening&) = delete;

    private:
        FuzzCase& fFuzz;
    };

    /// The next sample in the case's scene.
    ShadingIn NextSample();
    /// Which of its shaders or what part of its scene others than the case hold; empty for none.
    std::string Held();

    /// Two objects in memory that held different bytes get the same record and the same samples.
    /// @param subject  makes the class by `classID`
    /// @return the fault; empty for none
    std::string Try(const Subject& subject, const GUID& classID, const std::vector<bool>& kept);

private:
    struct Fill {
        const Field* field;
        size_t offset; ///< in the record; a string's table of operations isn't data
        std::vector<char> bytes;
    };
    struct Plug {
        const Field* slot;
        MCCountedPtr<ProbeShader> shader; ///< null for an empty slot
    };

    const ParameterTable& fTable;
    Random fRandom;
    std::vector<Fill> fFills;
    std::vector<Plug> fPlugs;
    ProbeScene fScene;
    bool fHasScene;

    std::string AskAll(Sheet& sheet, const Specimen& object, const RecordCopy& record, CallLog& surfaceCalls);
    std::string TrySample(
        const Specimen& left, const Specimen& right, const RecordCopy& record, bool otherContents);
};

} // namespace fernwick::validation
