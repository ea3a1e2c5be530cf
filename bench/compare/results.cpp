#include "bench/compare/results.h"

#include "bench/compare/ffmpeg.h"
#include "bench/compare/turbo.h"

#include <algorithm>
#include <cmath>

void Results_About(const Results& results) {
  const char* const form = R"({"type":"about","compiler":"%s %s","libjpeg-turbo":"%s","FFmpeg":"%s"})";
#ifdef __clang__
  const char* const compiler = "Clang";
#else
  const char* const compiler = "GCC";
#endif
  std::fprintf(results.text, "%s %s, libjpeg-turbo %s, FFmpeg %s\n", compiler, __VERSION__, Turbo_Version(), Ffmpeg_Version());
  if (!results.lines) return;
  std::fprintf(results.lines, form, compiler, __VERSION__, Turbo_Version(), Ffmpeg_Version());
  std::fputc('\n', results.lines);
}

void Results_Head(const Results& results) {
  std::fprintf(results.text, "\nMilliseconds a frame, then time of the peer / time of velarto\n%-6s %-11s %9s %3s %7s", "", "",
               "", "q", "KB");
  for (const NamedKernelLevel& level : results.levels) std::fprintf(results.text, "%8s", level.name);
  std::fprintf(results.text, "%8s%8s", "turbo", "FFmpeg");
  for (const std::string peer : {"turbo/", "FFmpeg/"}) {
    for (const NamedKernelLevel& level : results.levels) std::fprintf(results.text, "%13s", (peer + level.name).c_str());
  }
  std::fprintf(results.text, "\n");
}

static void Print_Start(const Results& results, Work work, const Subject& subject, int32_t quality) {
  const Picture& picture = subject.pictures[0];
  const std::string size = std::to_string(picture.width) + "x" + std::to_string(picture.height);
  std::fprintf(results.text, "%-6s %-11s %9s %3d", Work_Name(work), subject.name.c_str(), size.c_str(), quality);
}

void Results_Left_Out(const Results& results, Work work, const Subject& subject, int32_t quality) {
  Print_Start(results, work, subject, quality);
  std::fprintf(results.text, " left out: longer than a frame may be\n");
}

static void Print_Row(const Results& results, Work work, const Subject& subject, int32_t quality, const Match& match) {
  Print_Start(results, work, subject, quality);
  std::fprintf(results.text, " %7.1f", static_cast<double>(match.bytes[0]) / 1e3);
  for (const Times& times : match.times) std::fprintf(results.text, "%8.3f", Median(times) * 1e3);
  const size_t levels = results.levels.size();
  for (size_t peer = levels; peer < match.times.size(); ++peer) {
    for (size_t level = 0; level < levels; ++level) {
      std::fprintf(results.text, "%13.2f", Median_Ratio(match.times[peer], match.times[level]));
    }
  }
  std::fprintf(results.text, "\n");
  std::fflush(results.text);
}

static void Write_Row(const Results& results, Work work, const Subject& subject, int32_t quality, const Match& match) {
  const Picture& picture = subject.pictures[0];
  FILE* const out = results.lines;
  std::fprintf(out, R"({"type":"match","work":"%s","subject":"%s","kind":"%s","width":%d,"height":%d,"quality":%d,"rounds":%zu)",
               Work_Name(work), subject.name.c_str(), subject.kind.c_str(), picture.width, picture.height, quality,
               match.times[0].size());
  if (match.scale > 0) std::fprintf(out, R"(,"qscale":%d)", match.scale);
  std::fprintf(out, R"(,"ms":{)");
  for (size_t i = 0; i < match.names.size(); ++i) {
    std::fprintf(out, R"(%s"%s":%.4f)", i == 0 ? "" : ",", match.names[i].c_str(), Median(match.times[i]) * 1e3);
  }
  std::fprintf(out, R"(},"bytes":{)");
  for (size_t i = 0; i < match.names.size(); ++i) {
    std::fprintf(out, R"(%s"%s":%zu)", i == 0 ? "" : ",", match.names[i].c_str(), match.bytes[i]);
  }
  std::fprintf(out, R"(},"ratio":{)");
  const size_t levels = results.levels.size();
  for (size_t level = 0; level < levels; ++level) {
    std::fprintf(out, R"(%s"%s":{)", level == 0 ? "" : ",", match.names[level].c_str());
    for (size_t peer = levels; peer < match.names.size(); ++peer) {
      std::fprintf(out, R"(%s"%s":%.3f)", peer == levels ? "" : ",", match.names[peer].c_str(),
                   Median_Ratio(match.times[peer], match.times[level]));
    }
    std::fprintf(out, "}");
  }
  std::fprintf(out, "}}\n");
}

static std::vector<double>* Series_Of(Results* results, Work work, const std::string& level, const std::string& peer) {
  for (RatioSeries& series : results->series) {
    if (series.work == work && series.level == level && series.peer == peer) return &series.ratios;
  }
  results->series.push_back({work, level, peer, {}});
  return &results->series.back().ratios;
}

void Results_Match(Results* results, Work work, const Subject& subject, int32_t quality, const Match& match) {
  const size_t levels = results->levels.size();
  for (size_t peer = levels; peer < match.names.size(); ++peer) {
    for (size_t level = 0; level < levels; ++level) {
      const double ratio = Median_Ratio(match.times[peer], match.times[level]);
      Series_Of(results, work, match.names[level], match.names[peer])->push_back(ratio);
    }
  }
  Print_Row(*results, work, subject, quality, match);
  if (results->lines) Write_Row(*results, work, subject, quality, match);
}

void Results_Summary(const Results& results) {
  std::fprintf(results.text, "\nAll rows: time of the peer / time of velarto\n");
  for (const auto& [work, level, peer, ratios] : results.series) {
    double sum = 0;
    for (const double ratio : ratios) sum += std::log(ratio);
    const double mean = std::exp(sum / static_cast<double>(ratios.size())), least = *std::ranges::min_element(ratios);
    std::fprintf(results.text, "  %s %-13s / %-6s geometric mean %5.2f, minimum %5.2f, %zu rows\n", Work_Name(work), peer.c_str(),
                 level.c_str(), mean, least, ratios.size());
    if (!results.lines) continue;
    std::fprintf(results.lines,
                 R"({"type":"summary","work":"%s","level":"%s","peer":"%s","mean":%.3f,"minimum":%.3f,"rows":%zu})",
                 Work_Name(work), level.c_str(), peer.c_str(), mean, least, ratios.size());
    std::fputc('\n', results.lines);
  }
}
