#pragma once

#include "hostkit/PlainStream.h"
#include "platform/com/RefPtr.h"

namespace marnoth {

/// A project as an instrument saves itself to a host's stream and loads itself from there, over a stream that
/// holds the project alone, as its file does: the version word that stands in front of it is only here.
///
/// Reads, writes and seeks; one thread at a time. It uses the other stream from that one's beginning on.
class ProjectStream : public PlainStream {
public:
    explicit ProjectStream(RefPtr<IStream> project) : project_(std::move(project)) {}

    // IStream.
    HRESULT Read(void* bytes, ULONG count, ULONG* read) override;
    HRESULT Write(const void* bytes, ULONG count, ULONG* written) override;
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT SetSize(ULARGE_INTEGER) override { return STG_E_INVALIDFUNCTION; }
    HRESULT Commit(DWORD flags) override { return project_->Commit(flags); }
    /// The size with the word.
    HRESULT Stat(STATSTG* out, DWORD flags) override;

private:
    IUnknown* FindInterface(REFIID iid) override;

    RefPtr<IStream> project_;
    LONGLONG position_ = 0;
};

}  // namespace marnoth
