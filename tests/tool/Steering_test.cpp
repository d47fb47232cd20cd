// What tlctl makes of steering: settings by name, what is held of the values, plots.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <fstream>

#include "messaging/TLSubMessageSteeringStatus.h"
#include "platform/TTempDir.h"
#include "tool/TLBraillePlot.h"
#include "tool/TLPlotPicture.h"
#include "tool/TLSteeringMirror.h"
#include "tool/TLSteeringSettings.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

template <class Entry>
Handle<Entry> entry(const char* name) {
  auto made = makeHandle<Entry>();
  made->name = name;
  return made;
}

TEST(SteeringSettings, AreFoundByTheirNamesAndTakeOnlyWhatFits) {
  auto set = makeHandle<TLSteeringParameters>();
  const auto single = set->parameter(0);
  single->name = "relaxation";
  single->realEntries.push_back(entry<TLRealEntry>("factor"));
  const auto several = set->parameter(1);
  several->name = "output";
  several->integerEntries.push_back(entry<TLIntegerEntry>("interval"));
  several->vectorEntries.push_back(entry<TLVectorEntry>("centre"));
  several->choiceEntries.push_back(entry<TLChoiceEntry>("quantity"));
  for (const char* name : {"pressure", "total pressure"}) {
    const auto choice = makeHandle<TLChoice>();
    choice->name = name;
    choice->value = static_cast<std::int32_t>(several->choiceEntries[0]->subChoices.size()) + 1;
    several->choiceEntries[0]->subChoices.push_back(choice);
  }
  several->stringEntries.push_back(entry<TLStringEntry>("title"));
  several->stringEntries.push_back(entry<TLStringEntry>("factor"));
  const TLSteeringSettings settings(set);

  struct Case {
    const char* name;
    const char* text;
    const char* value;  // null: refused
  };
  for (const auto& c : std::vector<Case>{
           {"relaxation", "1.5", "1.5"},
           {"relaxation/factor", "-2e3", "-2000"},
           {"relaxation", "1.5x", nullptr},
           {"relaxation", "nan", nullptr},
           {"relaxation", "", nullptr},
           {"output/interval", "+12", "12"},
           {"interval", "1.5", nullptr},
           {"interval", "3000000000", nullptr},
           {"centre", "1 -2  0.5", "1 -2 0.5"},
           {"centre", "1 2", nullptr},
           {"centre", "1 2 3 4", nullptr},
           {"quantity", "total pressure", "2 (total pressure)"},
           {"quantity", "1", "1 (pressure)"},
           {"quantity", "3", nullptr},
           {"quantity", "velocity", nullptr},
           {"title", "two words", "two words"},
           {"title", "two\nlines", nullptr},
       }) {
    std::string error;
    const auto* setting = settings.find(c.name, error);
    ASSERT_NE(setting, nullptr) << c.name;
    const std::string before = setting->value();
    EXPECT_EQ(setting->store(c.text), c.value != nullptr) << c.name << " " << c.text;
    EXPECT_EQ(setting->value(), c.value != nullptr ? c.value : before) << c.name;
  }
  std::string error;
  EXPECT_EQ(settings.find("factor", error), nullptr);
  EXPECT_EQ(error, "\"factor\" may be \"relaxation\" \"output/factor\"");
  EXPECT_EQ(settings.find("output", error), nullptr);
  EXPECT_EQ(settings.find("relaxatoin", error), nullptr);
  EXPECT_THAT(error, HasSubstr("was \"relaxation\" meant?"));
}

class SteeringMirror : public testing::Test {
 protected:
  using Points = std::vector<float>;

  // Values as the daemon sends them: residuals of these names, a point at each of `x`.
  void arrive(const std::vector<const char*>& names, const Points& x, std::int32_t flag = 0) {
    auto set = makeHandle<TLSteeringParameters>();
    for (const char* name : names) {
      const auto parameter = set->parameter(static_cast<int>(set->parameters.size()));
      parameter->name = name;
      parameter->mergeValues(static_cast<std::int32_t>(x.size()), x.data(), x.data());
    }
    TLProcessMessage message;
    message.tag = TL_MSG_STEERING_VALUES;
    message.addString("/a.steering");
    message.addSteering(set, nullptr);
    message.addInteger(flag);
    mirror.take(message);
  }
  // What the next poll tells to be held in step 1.
  std::vector<std::string> told() {
    TLProcessMessage poll;
    mirror.addTo(poll);
    std::vector<std::string> told;
    const auto& status = dynamic_cast<const TLSubMessageSteeringStatus&>(*poll.subMessages.at(1));
    for (const auto& parameter : status.parameters->parameters) {
      const auto* x = parameter->xValues();
      told.push_back(fmt::format("{} {}", parameter->name,
                                 x == nullptr ? 0.0F : x[parameter->valueCount() - 1]));
    }
    return told;
  }

  TLSteeringMirror mirror{{"", "/a.steering"}};
};

TEST_F(SteeringMirror, TellsTheLastIterationOfEachSeries) {
  EXPECT_THAT(told(), SizeIs(0));
  arrive({"rms", "mass"}, {1, 2, 3});
  EXPECT_THAT(told(), ElementsAre("rms 3", "mass 3"));
  EXPECT_THAT(mirror.takeNews(), ElementsAre("iteration 3: rms 3, mass 3"));
  arrive({"rms", "mass"}, {});
  EXPECT_THAT(told(), ElementsAre("rms 3", "mass 3"));
  EXPECT_THAT(mirror.takeNews(), SizeIs(0));
  arrive({"rms", "other"}, {4});
  EXPECT_THAT(told(), ElementsAre("rms 4", "other 4"));
  EXPECT_EQ(mirror.residuals().at(0).size(), 4U);
}

TEST_F(SteeringMirror, BeginsAnewAfterAResetAndWhenIterationsGoBack) {
  arrive({"rms"}, {1, 2, 3});
  arrive({"rms"}, {1}, 1);
  EXPECT_THAT(told(), ElementsAre("rms 1"));
  EXPECT_EQ(mirror.residuals().at(0).size(), 1U);
  arrive({"rms"}, {5, 6});
  arrive({"rms"}, {2});
  EXPECT_EQ(mirror.residuals().at(0).size(), 1U);
  EXPECT_THAT(told(), ElementsAre("rms 2"));
  mirror.take(TLProcessMessage());
  EXPECT_THAT(told(), ElementsAre("rms 2"));
}

TEST(PlotSeries, StaysBoundedAndKeepsTheLastPoint) {
  TLPlotSeries series("rms");
  for (int i = 1; i <= 100003; ++i) {
    series.add(i, i);
    ASSERT_EQ(series.x(series.size() - 1), i);
  }
  EXPECT_LT(series.size(), TLPlotSeries::kMostPoints + 1);
  EXPECT_GT(series.size(), TLPlotSeries::kMostPoints / 4);
  for (std::size_t i = 1; i < series.size(); ++i) ASSERT_GT(series.x(i), series.x(i - 1));
}

TEST(BraillePlot, DrawsALogarithmicScaleInItsRoom) {
  TLPlotSeries falling("rms");
  for (int i = 0; i <= 30; ++i) falling.add(i, std::pow(10.0, -i / 10.0));
  const auto lines = TLBraillePlot(30, 6, false).draw({falling}, true);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_THAT(lines[0], testing::StartsWith(" 1.0e+00 |⠉⠒⠢⠤⡀  "));
  EXPECT_THAT(lines[3], testing::StartsWith(" 1.0e-03 |"));
  EXPECT_THAT(lines[3], testing::EndsWith("⣀"));
  EXPECT_EQ(lines[4], "          0                 30");
  EXPECT_EQ(lines[5], "rms 1.000e-03");
}

TEST(BraillePlot, CopesWithWhatItCannotShow) {
  TLPlotSeries odd("odd");
  EXPECT_THAT(TLBraillePlot(40, 10, true).draw({odd}, true), SizeIs(0));
  for (const double y : {0.0, -1.0, 0.0}) odd.add(1, y);
  EXPECT_THAT(TLBraillePlot(40, 10, true).draw({odd}, true), SizeIs(10)) << "no logarithm of it";
  EXPECT_THAT(TLBraillePlot(10, 10, true).draw({odd}, true), SizeIs(0));
  EXPECT_THAT(TLBraillePlot(40, 3, true).draw({odd}, true), SizeIs(0));
  TLPlotSeries huge("huge");
  huge.add(1, 1e300);
  huge.add(1e30, 1e-300);
  EXPECT_THAT(TLBraillePlot(40, 10, true).draw({huge, odd}, true), SizeIs(10));
}

TEST(PlotPicture, IsAPngWithAPlotForEachKind) {
  const TTempDir files;
  TLSteeringParameters set;
  const float x[] = {1, 2, 3};
  const float y[] = {3, -1, 2};
  for (int type = 0; type < 3; ++type) {
    set.parameter(type)->setType(type);
    set.parameter(type)->mergeValues(3, x, y);
  }
  set.parameter(3)->name = "without values";
  TLPlotPicture picture(300, 150);
  picture.add(set);
  EXPECT_EQ(picture.panels(), 3U);
  const std::string file = files.file("a.png");
  EXPECT_EQ(picture.write(file), 0);
  std::ifstream in(file, std::ios::binary);
  char head[24] = {};
  in.read(head, sizeof head);
  EXPECT_EQ(std::string(head, 8), "\211PNG\r\n\032\n");
  EXPECT_EQ(static_cast<unsigned char>(head[22]) * 256 + static_cast<unsigned char>(head[23]), 450);
  EXPECT_NE(picture.write("/no/such/directory/a.png"), 0);
}

}  // namespace
