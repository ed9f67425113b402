#include "base/Files.h"
#include "platform/posix/DrawService.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

namespace nv {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;

/// A script stands for the program: it draws whatever it is told to, unless the name says
/// otherwise.
constexpr const char *kScript = R"(#!/bin/sh
echo '{"ready":true}'
n=0
while read -r line; do
  case "$line" in
    *crash*) kill -9 $$ ;;
    *hang*) sleep 60 ;;
    *slow*) sleep 0.3 ;;
  esac
  echo "{\"job\":$n,\"done\":true}"
  n=$((n + 1))
done < "$1"
)";

class DrawServiceTest : public testing::Test {
  protected:
    DrawService &start(const std::string &script = kScript, std::chrono::seconds timeout = 30s) {
        const fs::path program = folder.write("program", script);
        fs::permissions(program, fs::perms::owner_all);
        fs::create_directories(scratch);
        service = std::make_unique<DrawService>(
            program, scratch, timeout, [this](const DrawService::Order &order, const Drawn &drawn) {
                const std::scoped_lock lock(mutex);
                ends.push_back(order.job.source.filename().string() + ": " +
                               (drawn.done ? "done" : drawn.failure));
                changed.notify_all();
            });
        return *service;
    }
    DrawService::Order order(const std::string &name) {
        return {number++, {DrawJob::Kind::picture, "/" + name, "/target", 10, 10}};
    }
    /// What was heard of orders, as soon as it is so many.
    std::vector<std::string> heard(std::size_t count) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, 20s, [&] { return ends.size() >= count; });
        return ends;
    }

    test::TempFolder folder;
    fs::path scratch = folder.path() / "scratch";
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> ends;
    std::uint64_t number = 0;
    std::unique_ptr<DrawService> service;
};

TEST_F(DrawServiceTest, oneProcessStaysForAllPictures) {
    start();
    for (std::size_t i = 0; i < 5; ++i) {
        service->want({order("a")});
        ASSERT_EQ(heard(i + 1).size(), i + 1);
    }
    EXPECT_EQ(service->starts(), 1U);
    service.reset();
    EXPECT_TRUE(fs::is_empty(scratch));
}

TEST_F(DrawServiceTest, onlyWhatIsWantedLastIsDrawn) {
    start();
    service->want({order("first")});
    heard(1);
    service->want({order("slow")});
    EXPECT_TRUE(service->want({order("passed")}).empty());
    EXPECT_THAT(service->want({order("newest"), order("next")}), ElementsAre(2U));
    EXPECT_THAT(heard(4), ElementsAre("first: done", "slow: done", "newest: done", "next: done"));
    EXPECT_EQ(service->starts(), 1U);
}

TEST_F(DrawServiceTest, whatIsBeingDrawnIsNotDrawnTwice) {
    start();
    const DrawService::Order slow = order("slow");
    service->want({order("first")});
    heard(1);
    service->want({slow});
    EXPECT_TRUE(service->want({slow, order("next")}).empty());
    EXPECT_THAT(heard(3), ElementsAre("first: done", "slow: done", "next: done"));
}

TEST_F(DrawServiceTest, aCrashCostsThePictureThatCrashesANewProcessToo) {
    start();
    service->want({order("a"), order("crash"), order("b")});
    EXPECT_THAT(heard(3),
                ElementsAre("a: done", "crash: The drawing crashed (signal 9).", "b: done"));
    EXPECT_EQ(service->starts(), 3U);
}

TEST_F(DrawServiceTest, aPictureThatHangsIsStopped) {
    start(kScript, 1s);
    service->want({order("hang"), order("b")});
    EXPECT_THAT(heard(2), ElementsAre("hang: The drawing got stuck and was stopped.", "b: done"));
}

TEST_F(DrawServiceTest, aProgramThatCannotDrawFailsWhatIsOrderedAndIsTriedAgain) {
    start("#!/bin/sh\necho no library >&2\nexit 127\n");
    service->want({order("a"), order("b")});
    const std::string why = "The program norvelane-draw ended before it drew anything. no library";
    EXPECT_THAT(heard(2), ElementsAre("a: " + why, "b: " + why));
    service->want({order("c")});
    EXPECT_EQ(heard(3).back(), "c: " + why);
    EXPECT_EQ(service->starts(), 2U);
}

TEST_F(DrawServiceTest, endsAtOnceWhateverItDraws) {
    start();
    service->want({order("a")});
    heard(1);
    service->want({order("hang")});
    const auto begun = std::chrono::steady_clock::now();
    service.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 3s);
    EXPECT_TRUE(fs::is_empty(scratch));
}

} // namespace
} // namespace nv
