#include <csignal>

#include "batch/batch_report.h"
#include "batch/shard.h"
#include "commands_fixture.h"
#include "running_program.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;
using Variables = std::map<std::string, std::string>;

std::string shardIn(const Variables& variables) {
    try {
        const auto shard = shardOfEnvironment([&](const char* name) {
            const auto found = variables.find(name);
            return found != variables.end() ? found->second.c_str() : nullptr;
        });
        return shard ? std::to_string(shard->index) + "/" + std::to_string(shard->count) : "none";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(Shard, EnginesNameIt) {
    const std::vector<std::pair<Variables, std::string>> cases{
        {{}, "none"},
        {{{"SLURM_ARRAY_TASK_ID", "14"},
          {"SLURM_ARRAY_TASK_MIN", "10"},
          {"SLURM_ARRAY_TASK_COUNT", "8"},
          {"SLURM_ARRAY_TASK_STEP", "2"}},
         "3/8"},
        {{{"JOB_COMPLETION_INDEX", "0"}, {"JOB_COMPLETIONS", "4"}}, "1/4"},
        {{{"JOB_COMPLETION_INDEX", "0"}}, "JOB_COMPLETIONS is not set; set it, or give the shard with --shard I/N"},
        {{{"CI_NODE_INDEX", "4"}, {"CI_NODE_TOTAL", "4"}}, "4/4"},
        {{{"CI_NODE_INDEX", "5"}, {"CI_NODE_TOTAL", "4"}},
         "CI_NODE_INDEX names shard 5 of 4; a shard is a number from 1 to the number of shards"},
    };
    for (const auto& [variables, expected] : cases) {
        EXPECT_EQ(shardIn(variables), expected);
    }
    EXPECT_THROW(shardOf("3"), std::runtime_error);
    EXPECT_THROW(shardOf("0/2"), std::runtime_error);
}

TEST(Shard, EveryFileIsInOneOfThemAndTheirTimesAreAlike) {
    const std::vector<std::string> files{"a", "b", "c", "d", "e"};
    const ReplayTimes times{{"a", 1}, {"b", 1}, {"c", 6}, {"d", 4}};
    EXPECT_EQ(shareOf({1, 2}, files, times), (std::vector<std::string>{"c", "a", "b"}));
    EXPECT_EQ(shareOf({2, 2}, {"e", "d", "c", "b", "a"}, times), (std::vector<std::string>{"d", "e"})) << "e counts 3";
}

class Batches : public Commands {
protected:
    /// A folder of `count` recordings, the second of which no service keeps to.
    std::string recordings(int count) const {
        std::ifstream stream(std::string(SOURCE_FOLDER) + "/tests/recordings/exchange-story.jsonl");
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        const std::string before = R"(minimum-length","value":)";
        auto other = text;
        other.replace(other.find(before) + before.size(), 1, "99");
        const auto folder = write("mark", "").parent_path() / "recordings";
        fs::create_directories(folder / "inner");
        for (int number = 1; number <= count; ++number) {
            std::ofstream(folder / (number == 1 ? "inner" : "") / (std::to_string(number) + ".jsonl"))
                << (number == 2 ? other : text);
        }
        setenv("TMPDIR", (folder.parent_path() / "").c_str(), 1);
        return folder.string();
    }

    std::string hangingService() const {
        const auto service = write("service", "#!/bin/sh\nexec sleep 1000\n");
        fs::permissions(service, fs::perms::owner_all);
        return service.string();
    }

    /// What is left among the temporary files.
    static std::size_t leftovers() {
        const fs::directory_iterator entries(std::getenv("TMPDIR"));
        return static_cast<std::size_t>(std::count_if(begin(entries), end(entries), [](const auto& entry) {
            return entry.path().filename().string().rfind("deskwatch-", 0) == 0;
        }));
    }
};

TEST_F(Batches, FailuresAreNamedAndTheReportsOfTheShardsAreOne) {
    const auto folder = recordings(4);
    std::vector<std::string> merge{"replay",  "--merge",        "--junit", folder + "/report.xml",
                                   "--times", folder + "/times"};
    for (const std::string shard : {"1/2", "2/2"}) {
        const auto outcome = deskwatchProgram({"replay", folder, "--shard", shard, "--jobs", "2", "--json"});
        const auto report = Json::parse(outcome.output);
        for (const auto& result : report.at("recordings")) {
            const bool isBroken = result.at("file") == folder + "/2.jsonl";
            EXPECT_EQ(result.at("failure").is_null(), !isBroken) << result;
        }
        merge.push_back(write("report" + shard.substr(0, 1), outcome.output).string());
        EXPECT_EQ(leftovers(), 0U);
    }
    const auto all = deskwatchProgram(merge);
    EXPECT_EQ(all.status, 1);
    EXPECT_NE(all.output.find("4 recordings in "), std::string::npos) << all.output << all.errors;
    EXPECT_EQ(all.errors.find(folder + "/2.jsonl:7: the service does not do what was recorded"), 0U) << all.errors;
    EXPECT_NE(all.errors.find("1 of 4 recordings failed\n"), std::string::npos);
    EXPECT_EQ(readTimes(folder + "/times").size(), 4U);
    merge.pop_back();
    EXPECT_NE(deskwatchProgram(merge).errors.find("the report of shard 2/2 is missing"), std::string::npos);
}

TEST_F(Batches, UpdatedFilesAreNamed) {
    const auto folder = recordings(2);
    const auto outcome = deskwatchProgram({"replay", "--update", folder});
    EXPECT_EQ(outcome.output.find(folder + "/2.jsonl: updated\nSlowest\n"), 0U) << outcome.output << outcome.errors;
}

TEST_F(Batches, WorkerThatHangsOrIsKilledFailsItsRecordingAlone) {
    const auto folder = recordings(1);
    const auto service = hangingService();
    const auto late = deskwatchProgram({"replay", folder, "--limit", "1", "--service", service});
    EXPECT_NE(late.errors.find("1.jsonl: took longer than 1 s\n"), std::string::npos) << late.errors;
    std::ofstream(service) << "#!/bin/sh\n"
                              "for file in $(grep -lsF TMPDIR=$TMPDIR /proc/[0-9]*/environ); do\n"
                              "  grep -q deskwatch ${file%environ}comm && kill -9 $(basename ${file%/environ})\n"
                              "done\n";
    const auto killed = deskwatchProgram({"replay", folder, "--jobs", "1", "--service", service});
    EXPECT_NE(killed.errors.find("1.jsonl: its process was ended by signal 9\n"), std::string::npos) << killed.errors;
    EXPECT_EQ(leftovers(), 0U);
}

TEST(BatchReports, JunitHoldsNoCharacterThatXmlDoesNotHave) {
    const BatchReport report{{}, 1, 0.5, {{"a.jsonl", 0.5, "a\x01\x1f\tb\n\xff<", false}}};

    EXPECT_NE(batchJunit(report).find("a??\tb\n\xEF\xBF\xBD&lt;"), std::string::npos) << batchJunit(report);
}

TEST(BatchReports, RecordingIsUpdatedOnlyWhereTheReportSaysSo) {
    const auto isUpdated = [](const std::string& member) {
        const auto text = R"({"shard": 1, "shards": 1, "total": 1, "seconds": 1,
            "recordings": [{"file": "a.jsonl", "seconds": 1, "failure": null)" +
                          member + "}]}";
        return parseBatchJson(text, "report.json").results.at(0).isUpdated;
    };
    EXPECT_FALSE(isUpdated(""));
    EXPECT_TRUE(isUpdated(R"(, "updated": true)"));
}

TEST_F(Batches, InterruptLeavesNothing) {
    const auto folder = recordings(30);
    const std::string service = fs::path(DESKWATCH_PROGRAM).replace_filename("tesk-agent");
    for (const auto& tried : {service, service, hangingService()}) {
        RunningProgram program({"replay", folder, "--jobs", "4", "--service", tried});
        while (leftovers() == 0) {
            g_usleep(1000);
        }
        program.signal(SIGINT);
        EXPECT_EQ(program.waitForEnd(), -1);
        EXPECT_EQ(leftovers(), 0U);
    }
}

} // namespace
} // namespace deskwatch
