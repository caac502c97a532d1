#pragma once
#include "tests/support/FakeShader.h"
#include <memory>
#include <string>

/// A plugged object apart from the shader that it gives, once. It refuses with a status of its own when it has none.
class Socket final : public fernwick::Component<IMCUnknown, IID_IMCUnknown> {
public:
    MCCountedPtr<FakeShader> fShader;
    std::function<void()> fOnQuery = [] {};
    std::shared_ptr<void> fNote;

    static constexpr MCErr kRefusal = 0x80010042;

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        if (!SameGuid(id, IID_IShellShader))
            return Component::QueryInterface(id, out);
        fOnQuery();
        *out = nullptr;
        if (!fShader)
            return kRefusal;
        fShader->AddRef();
        *out = static_cast<IShellShader*>(fShader.Get());
        fShader = nullptr;
        return MC_S_OK;
    }
};

/// In which order a shader lets go of what is plugged: for each the number of its slot, then "s" for the shader behind
/// it or "p" for the plugged object.
class LeavingOrder {
public:
    void Plug(SubShaderSlot& slot)
    {
        const std::string number = std::to_string(fPlugged++);
        const auto socket = fernwick::MakeCounted<Socket>();
        socket->fShader = FakeColor({0, 0, 0, 0});
        socket->fShader->fOn = [note = NoteOf(number + "s")](ShadingIn&) {};
        socket->fNote = NoteOf(number + "p");
        slot = socket.Get();
    }
    const std::string& Text() const { return fText; }

private:
    int fPlugged = 0;
    std::string fText;

    /// Writes `what` when it goes.
    std::shared_ptr<void> NoteOf(const std::string& what)
    {
        return {nullptr, [this, what](void*) { fText += what + " "; }};
    }
};
