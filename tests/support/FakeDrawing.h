#pragma once

#include "base/Files.h"
#include "platform/Drawing.h"

#include <set>
#include <string>
#include <vector>

namespace nv::test {

/// Draws by writing "BM" or "JPEG" and the source's bytes. A source that holds "broken" fails.
class FakeDrawing final : public Drawing {
  public:
    void draw(std::span<const DrawJob> jobs, std::chrono::seconds timeout,
              const std::function<bool(std::size_t, const Drawn &)> &take,
              const std::function<bool()> &goOn) override {
        batches.push_back(jobs.size());
        timeouts.push_back(timeout);
        for (std::size_t i = 0; i < jobs.size(); ++i)
            if (!goOn() || !take(i, drawOne(jobs[i])))
                return;
    }

    std::vector<std::size_t> batches;
    std::vector<std::chrono::seconds> timeouts;
    std::vector<DrawJob> drawn;
    std::set<std::string> neighbours; ///< names seen beside the sources
    int failures = 0;                 ///< of the next drawings

  private:
    Drawn drawOne(const DrawJob &job) {
        drawn.push_back(job);
        for (const std::filesystem::directory_entry &entry :
             std::filesystem::directory_iterator(job.source.parent_path()))
            neighbours.insert(entry.path().filename().string());
        const Bytes bytes = readWhole(job.source);
        const std::string source(ByteView(bytes).raw());
        if (failures-- > 0 || source.find("broken") != std::string::npos)
            return {false, "not a picture", 0, 0, 0};
        const bool picture = job.kind == DrawJob::Kind::picture;
        writeWhole(job.target, (picture ? "BM" : "JPEG") + source);
        return {true, "", picture ? 468 : 0, picture ? 60 : 0, 0};
    }
};

} // namespace nv::test
