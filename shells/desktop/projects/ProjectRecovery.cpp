#include "shells/desktop/projects/ProjectRecovery.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <new>
#include <utility>

#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "platform/bytes/RiffStream.h"
#include "project/ProjectFile.h"
#include "project/ProjectReader.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::chrono::seconds kCopyPeriod{60};
constexpr std::chrono::seconds kFirstCopy{10};  ///< after the start: a short visit's changes count, too

}  // namespace

bool isWholeState(const std::vector<std::uint8_t>& state) try {
    const RefPtr<MemoryStream> bytes = makeObject<MemoryStream>(state);
    RiffStream stream;
    Project project;
    return stream.open(bytes.get()) == kRiffOk && passWrapper(stream) && !readProject(stream, project) &&
           !grainBelowZero(project);
} catch (const std::bad_alloc&) {
    return false;
}

ProjectRecovery::ProjectRecovery(LiveInstrument& instrument, OpenProject& project, PageWindow& window,
                                 Notices& notices, const std::filesystem::path& folder)
    : instrument_(instrument),
      project_(project),
      window_(window),
      notices_(notices),
      file_(folder),
      nextCopy_(EventLoop::Time::clock::now() + kFirstCopy) {}

void ProjectRecovery::offer(std::function<void()> opened) {
    if (!file_.found()) return;
    window_.askMessage("Marnoth was ended in the middle of its work. Open the project as it was then?",
                       MessageKind::yesNo, [this, opened = std::move(opened)](PageAnswer answer) {
                           if (answer == PageAnswer::yes) recover(opened);
                           if (answer == PageAnswer::no) file_.settle();
                           if (answer == PageAnswer::cancel) file_.leaveFound();
                       });
}

void ProjectRecovery::recover(const std::function<void()>& opened) {
    std::ifstream file(*file_.found(), std::ios::binary);
    std::vector<std::uint8_t> state{std::istreambuf_iterator<char>(file), {}};
    // A load begins with an empty project, whatever comes of it.
    if (!isWholeState(state) || !instrument_.loadState(std::move(state)))
        return notices_.warn("The project as it was can't be read. It is kept as " +
                             utf8FromPath(file_.putAside()) + ".");
    file_.settle();
    project_.recovered();
    opened();
}

void ProjectRecovery::look(EventLoop::Time now) {
    const std::uint64_t changes = project_.changes();
    if (now < nextCopy_ || changes == copied_ || !project_.hasChanged()) return;
    if (!file_.write([this] { return instrument_.saveState(); })) return;
    copied_ = changes;
    nextCopy_ = now + kCopyPeriod;
}

void ProjectRecovery::keepChanges() {
    if (!project_.hasChanged()) return;
    file_.finish();
    if (file_.write([this] { return instrument_.saveState(); })) file_.keep();
}

}  // namespace marnoth
