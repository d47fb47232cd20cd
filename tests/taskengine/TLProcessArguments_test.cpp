#include "taskengine/TLProcessArguments.h"

#include <gmock/gmock.h>

namespace {

using Pairs = std::vector<std::pair<RWCString, RWCString>>;

Pairs pairs(const TLProcessArguments& arguments) {
  Pairs list;
  for (const auto& entry : arguments.entries()) list.emplace_back(entry->type(), entry->value());
  return list;
}

TEST(ProcessArguments, CommandLineBecomesPairs) {
  const std::pair<std::vector<const char*>, Pairs> cases[] = {
      {{}, {}},
      {{"prog", "-task"}, {{"", "prog"}, {"-task", ""}}},
      {{"prog", "-a", "-b", "c", "d"}, {{"", "prog"}, {"-a", ""}, {"-b", "c"}, {"", "d"}}},
      {{"prog", "-n", "-5", ""}, {{"", "prog"}, {"-n", ""}, {"-5", ""}}},
      {{"-", "a=b"}, {{"-", "a=b"}}},
  };
  for (const auto& [words, expected] : cases) {
    EXPECT_EQ(pairs(TLProcessArguments(static_cast<int>(words.size()), words.data())), expected);
  }
  EXPECT_EQ(TLProcessArguments(-1, nullptr).count(), 0);
}

TEST(ProcessArguments, FindsTheFirstOfExactlyThisType) {
  TLProcessArguments arguments;
  arguments.append("-Task", "no");
  arguments.append("-tasks", "no");
  arguments.append("-task", "first");
  arguments.append("-task", "second");
  RWCString value = "kept";
  EXPECT_EQ(arguments.find("-steering", value), 0);
  EXPECT_EQ(value, "kept");
  EXPECT_EQ(arguments.find("-task", value), 1);
  EXPECT_EQ(value, "first");
}

TEST(ProcessArguments, OnlyAPositionalWordIsNoOption) {
  EXPECT_FALSE(TLProcessArgument("none", "x").isOption());
  EXPECT_TRUE(TLProcessArgument("none", "-x").isOption());
  EXPECT_TRUE(TLProcessArgument("none", "").isOption());
  EXPECT_TRUE(TLProcessArgument("None", "x").isOption());
  EXPECT_TRUE(TLProcessArgument("", "x").isOption());
}

TEST(ProcessArguments, ReadTheirBlockAndWriteIt) {
  TLTextSource source(
      "  tl_begin process_argument\n type none\n VALUE  /a b/c.run  \n LOCAL_FILE YES\n"
      "  TL_END process_argument\n"
      "TL_BEGIN whatever\n type wrong\nTL_END whatever\n"
      "# comment\n nonsense\n"
      "TL_BEGIN process_argument\nTYPE undefined\nVALUE Undefined\nTL_END process_argument\n"
      "TL_BEGIN process_argument\nTYPE -x\nVALUE\nlocal_file no\nTL_END process_argument\n"
      "TL_END process_arguments\nrest\n");
  TLProcessArguments arguments;
  arguments.append("old", "old");
  ASSERT_EQ(arguments.read(source), 1);
  EXPECT_EQ(pairs(arguments), (Pairs{{"none", "/a b/c.run"}, {"", "Undefined"}, {"-x", ""}}));
  EXPECT_EQ(source.readLine(), "rest");

  TLTextSink sink;
  arguments.write(sink);
  EXPECT_EQ(sink.text(),
            "          TL_BEGIN process_argument\n"
            "      TYPE               none\n"
            "      VALUE              /a b/c.run\n"
            "      LOCAL_FILE         yes\n"
            "          TL_END process_argument  \n"
            "          TL_BEGIN process_argument\n"
            "      TYPE               undefined\n"
            "      VALUE              Undefined\n"
            "          TL_END process_argument  \n"
            "          TL_BEGIN process_argument\n"
            "      TYPE               -x\n"
            "      VALUE              undefined\n"
            "      LOCAL_FILE         no\n"
            "          TL_END process_argument  \n");
}

}  // namespace
