#pragma once

#include "readers/Reader.h"

#include <cstdint>

namespace nv {

/// The same reading with another task.
inline ReadContext withTask(const ReadContext &ctx, TaskMonitor &task) {
    return {ctx.file, ctx.evidence, ctx.content, ctx.clock,       ctx.scratch, ctx.sink,
            ctx.log,  task,         ctx.deleted, ctx.classicOnly, ctx.secrets};
}

/// The same reading, whose records go elsewhere.
inline ReadContext withSink(const ReadContext &ctx, RecordSink &sink) {
    return {ctx.file, ctx.evidence, ctx.content, ctx.clock,       ctx.scratch, sink,
            ctx.log,  ctx.task,     ctx.deleted, ctx.classicOnly, ctx.secrets};
}

/// A stretch of a task, 0 to 1.
struct Stretch {
    double from = 0;
    double to = 1;
};

/// A part of a reading: the same, with a stretch of its task. The whole must outlive it.
class ReadingPart {
  public:
    ReadingPart(const ReadContext &whole, Stretch stretch)
        : m_task(whole.task, stretch.from, stretch.to), context(withTask(whole, m_task)) {}
    ~ReadingPart() = default;
    ReadingPart(const ReadingPart &) = delete;
    ReadingPart &operator=(const ReadingPart &) = delete;

  private:
    SubTask m_task;

  public:
    ReadContext context;
};

/// Counts what was saved, and passes it on.
class CountingSink final : public RecordSink {
  public:
    explicit CountingSink(RecordSink &to) : m_to(to) {}
    void save(UrlRecord &record) override {
        m_to.save(record);
        ++m_saved;
    }
    std::uint64_t saved() const { return m_saved; }

  private:
    RecordSink &m_to;
    std::uint64_t m_saved = 0;
};

} // namespace nv
