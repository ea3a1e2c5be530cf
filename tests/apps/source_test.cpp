#include "apps/rude_server.h"
#include "apps/tool.h"
#include "apps/velarto/jpeg.h"
#include "apps/velarto/sources/multipart.h"
#include "apps/velarto/sources/part_frame.h"
#include "apps/velarto/sources/reconnect.h"
#include "apps/velarto/stream.h"
#include "support/djpeg.h"

#include <csignal>
#include <httplib.h>
#include <spawn.h>

namespace {

std::string Shell(const std::string& line) {
  FILE* const pipe = popen(line.c_str(), "r");
  std::string text;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) text += (char)c;
  EXPECT_EQ(pclose(pipe), 0) << line;
  return text;
}

/** Runs an HTTP server for as long as it lives. */
struct RunningServer {
  httplib::Server& server;
  const std::string host;
  std::thread thread;
  explicit RunningServer(httplib::Server& it)
      : server(it), host("127.0.0.1:" + std::to_string(it.bind_to_any_port("127.0.0.1"))) {
    thread = std::thread([this] { server.listen_after_bind(); });
    while (!server.is_running()) std::this_thread::yield();
  }
  ~RunningServer() {
    server.stop();
    thread.join();
  }
};

void Answer(int client, const std::string& bytes) {
  Await(client, "\r\n\r\n");
  Send(client, "HTTP/1.0 200 OK\r\n\r\n" + bytes);
}

struct SourceTest : ToolTest {
  SourceTest() {
    unsetenv("http_proxy");
    Walk_Add(&walk, {(const uint8_t*)stream.data(), stream.size()});
    for (WalkedFrame frame; Walk_Next(&walk, &frame);) frames.push_back(frame);
    serve = [this](auto&, auto& answer) { answer.set_content(stream, "video/x-orvistream"); };
  }
  /** The sample's bytes from one frame's start to another's end. */
  std::string Stretch(size_t from, size_t to) const {
    return stream.substr((size_t)frames[from].offset,
                         (size_t)(frames[to].offset - frames[from].offset) + frames[to].bytes.size());
  }
  /** The source has the same frames as the file. */
  void Expect_Sample(const std::string& name, const std::string& program = VELARTO_TOOL_PATH) const {
    EXPECT_EQ(Run("info " + name, program).out, Run("info " + sample).out) << name;
  }
  const std::string stream = Read_Text(sample);
  FrameWalk walk;
  std::vector<WalkedFrame> frames;
  httplib::Server server;
  httplib::Server::Handler serve;
};

TEST_F(SourceTest, HttpGivesTheFramesOfTheFile) {
  server.Get("/file", serve);
  server.Get("/live", [this](auto&, auto& answer) {
    answer.set_chunked_content_provider("video/x-orvistream", [this](size_t at, httplib::DataSink& sink) {
      at < stream.size() ? (void)sink.write(&stream[at], std::min<size_t>(stream.size() - at, 7001)) : sink.done();
      return true;
    });
  });
  server.Get("/moved", [](auto&, auto& answer) { answer.set_redirect("/live"); });
  server.Get("/loop", [](auto&, auto& answer) { answer.set_redirect("/loop"); });
  const RunningServer site(server);
  const std::string name = "http://" + site.host;
  for (const char* const path : {"/file", "/live", "/moved"}) Expect_Sample(name + path);
  EXPECT_EQ(Run("record " + name + "/file -o all").code, 0);
  EXPECT_TRUE(Read_Text(folder / "all") == stream);  // Delivered completely: that is the end.
  Expect_Failure("view http://eve:secret@" + site.host + "/no", "can't read " + name + "/no: the server answered 404");
  Expect_Failure("info " + name + "/loop", "redirects");
}

TEST_F(SourceTest, UserAndPasswordAreGivenAndNotShown) {
  const auto md5 = [](const std::string& text) { return Shell("printf %s '" + text + "' | md5sum").substr(0, 32); };
  const auto answer_if = [&](bool right, const char* demand, auto& request, auto& answer) {
    if (right) return serve(request, answer);
    answer.status = 401;
    answer.set_header("WWW-Authenticate", demand);
  };
  server.Get("/basic", [&](auto& request, auto& answer) {
    const std::string given = request.get_header_value("Authorization");
    answer_if(given == "Basic YWRhOnNlQGNyZXQ=", "Basic realm=\"cam\"", request, answer);
  });
  server.Get("/digest", [&](auto& request, auto& answer) {
    const std::string given = request.get_header_value("Authorization");
    char cnonce[100] = "", nc[9] = "", response[33] = "";
    std::sscanf(given.c_str() + std::min(given.find("cnonce="), given.size()),
                "cnonce=\"%99[^\"]\", nc=%8[0-9], qop=auth, response=\"%32[0-9a-f]", cnonce, nc, response);
    const bool right = response == md5(md5("ada:cam:se@cret") + ":n1:" + nc + ":" + cnonce + ":auth:" + md5("GET:/digest"));
    answer_if(right, R"(Digest realm="cam", nonce="n1", qop="auth", algorithm=MD5)", request, answer);
  });
  const RunningServer site(server);
  for (const std::string path : {"/basic", "/digest"}) {
    Expect_Sample("http://ada:se%40cret@" + site.host + path);
    Expect_Sample("http://" + site.host + path, "VELARTO_USER=ada VELARTO_PASSWORD=se@cret " VELARTO_TOOL_PATH);
    for (const std::string user : {"", "ada:wrong@"}) {
      Expect_Failure("info http://" + user + site.host + path, "read http://" + site.host + path + ": the server answered 401");
    }
  }
  EXPECT_EQ(Source_Title("HTTPS://a:b@c@host:80/x@y?z"), "HTTPS://host:80/x@y?z");
  EXPECT_EQ(Source_Title("http://a:p/q@host/"), "http://host/");
  EXPECT_EQ(Source_Title("http://[::1]:80/x@y"), "http://[::1]:80/x@y");
}

TEST_F(SourceTest, AnUnknownCertificateIsRefused) {
  const std::string key = folder / "key", certificate = folder / "cert";
  Shell("openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=127.0.0.1 -keyout " + key + " -out " + certificate + " 2>&1");
  httplib::SSLServer secure(certificate.c_str(), key.c_str());
  secure.Get("/", serve);
  Expect_Failure("info https://" + RunningServer(secure).host, "self-signed certificate");
}

/** A body that arrives in pieces of these sizes has these parts, and no more than the limit is held. */
void Expect_Parts(const std::string& type, const std::string& text, const std::vector<std::string>& expected,
                  std::initializer_list<size_t> pieces) {
  for (const size_t piece : pieces) {
    Multipart parts;
    EXPECT_TRUE(Multipart_Type(type, &parts.boundary));
    std::vector<std::string> found;
    std::span<const uint8_t> body;
    for (size_t at = 0; at < text.size(); at += piece) {
      Multipart_Add(&parts, {(const uint8_t*)&text[at], std::min(piece, text.size() - at)});
      while (Multipart_Next(&parts, &body)) found.emplace_back(body.begin(), body.end());
      EXPECT_LE(parts.held.size(), LargestPart + 2 * piece);
    }
    EXPECT_EQ(found, expected) << type << " in pieces of " << piece << ": " << text.substr(0, 300);
  }
}

TEST(Multipart, SpellingsAndPiecesChangeNothing) {
  const std::vector<std::string> bodies = {"alpha", "\r\n--fo\nx--foo!", std::string("\0\xFF\n\n", 4), "-"};
  for (const char* const type :
       {"multipart/x-mixed-replace;boundary=foo", "Multipart/M; a=b; BOUNDARY = \"--foo\"; c", "multipart/x"}) {
    for (int spelling = 0; spelling < 4; ++spelling) {
      const std::string end = spelling & 1 ? "\n" : "\r\n";
      std::string text = "hello" + end;
      for (const std::string& body : bodies) {
        text += "--foo" + end + "Content-Type: image/jpeg" + end;
        if (spelling & 2) text += "CONTENT-LENGTH:  " + std::to_string(body.size()) + end;
        text += end + body + end;
      }
      Expect_Parts(type, text + "--foo--", bodies, {1, 2, 3, 11, 1000});
    }
  }
}

TEST(Multipart, WrongLengthsLoseNoPart) {
  const std::string given = "beta beta beta";
  for (const size_t wrong : {given.size() - 11, given.size() - 2, given.size() + 26, size_t{2000000}, LargestPart + 1}) {
    std::vector<std::string> expected = {"alpha alpha", given, "gamma gamma", "delta delta"};
    std::string text;
    for (const std::string& body : expected) {
      const size_t length = body == given ? wrong : body.size();
      text += "--foo\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n" + body + "\r\n";
    }
    if (wrong < given.size()) expected.insert(expected.begin() + 1, given.substr(0, wrong));
    Expect_Parts("multipart/x; boundary=foo", text + "--foo--", expected, {1, 2, 3, 11, 1000});
  }
}

TEST(Multipart, EndlessPartsAreNotKept) {
  const std::string type = "multipart/x; boundary=foo", endless(3 * LargestPart, 'y'), lines(3 * LargestPart, '\n'),
                    good = "\n--foo\n\nwell\n--foo\n";
  for (const std::string start : {"", "--foo\r\n", "--foo\r\n\r\n", "--foo\r\nContent-Length: 99999999\r\n\r\n"})
    Expect_Parts(type, start + endless + good, {"well"}, {65536});
  Expect_Parts(type, "--foo\nContent-Length: 2\n\nab" + lines + good, {"ab", "well"}, {65536});
}

TEST_F(SourceTest, PicturesOfOtherCamerasBecomeFrames) {
  std::string tables, error;
  for (int i = 0; i < 128; ++i) tables += i % 64 == 0 ? "16\n" : "20 ";  // The first entry says quality 50.
  Write("tables", tables);
  const std::string part = folder / "part.jpg", own = "-qtables " + (folder / "tables").string() + " -qslots 0,1,1";
  for (const std::string maker : {"-quality 75", "-quality 40", "-quality 98", "-progressive", "-sample 1x1", "-optimize",
                                  "-restart 1", "-grayscale", own.c_str(), "-quality 75 | jpegtran -crop 150x100+0+0"}) {
    Shell("djpeg " + Data_Path("scene-q75.jpg") + " | cjpeg " + maker + " > " + part);
    const Bytes jpeg = Read_File(part);
    Bytes frame, none;
    PartConverter converter;
    ASSERT_TRUE(Part_To_Frame(&converter, jpeg, &frame)) << maker;
    EXPECT_EQ(frame == jpeg, maker == "-quality 75" || maker == "-quality 40") << maker;
    Picture picture;
    ASSERT_TRUE(Jpeg_Read(jpeg, &picture, &error)) << error;
    picture = Picture_Coded_Part(std::move(picture));
    const DecoderPtr decoder = Headless_Decoder(16, 16);
    ASSERT_EQ(Push(decoder.get(), frame), (int32_t)frame.size());
    const Bytes shown = Current_Picture(decoder.get());
    ASSERT_EQ(shown.size(), picture.pixels.size() + 54);
    picture.pixels.insert(picture.pixels.begin(), 54, 0);
    for (const double psnr : Psnr(shown, picture.pixels)) EXPECT_GT(psnr, 30) << maker;
    EXPECT_FALSE(Part_To_Frame(&converter, {jpeg.data(), jpeg.size() - 500}, &none)) << maker;
    EXPECT_FALSE(Part_To_Frame(&converter, Bytes(3000, 'x'), &none));
    EXPECT_TRUE(none.empty());
  }
}

TEST_F(SourceTest, ABrokenConnectionIsOpenedAgain) {
  const std::string first = Stretch(0, 2), second = Stretch(5, 9).substr(100);
  for (const std::string scheme : {"http", "tcp"}) {
    const auto give = [&](int client, const std::string& bytes) {
      scheme == "tcp" ? (void)Send(client, bytes) : Answer(client, bytes);
    };
    const RudeServer rude({[&](int client) { give(client, Stretch(0, 3).substr(0, first.size() + 500)); },
                           [&](int client) { give(client, second), Await(client); }});
    const Outcome outcome = Run("record " + rude.Name(scheme) + " -o live --frames 7");
    EXPECT_EQ(outcome.code, 0);
    const std::string line = "velarto: " + rude.Name(scheme) + ": the connection ";
    EXPECT_EQ(outcome.err, line + "was lost (closed by the other side); trying again\n" + line + "is back\n");
    EXPECT_TRUE(Read_Text(folder / "live") == first + second);
  }
}

/** The time of the last try is set so that a tenth of a second is missing until the next one. */
TEST_F(SourceTest, TriesToConnectComeLessAndLessOften) {
  using std::chrono::milliseconds, std::chrono::steady_clock;
  const std::atomic<bool> stop = false;
  Reconnect reconnect;
  EXPECT_FALSE(Reconnect_Back(&reconnect));
  EXPECT_TRUE(Reconnect_Lost(&reconnect));
  for (const int pause : {250, 500, 1000, 2000, 2000, 2000}) {
    const auto start = steady_clock::now(), due = start + milliseconds(100);
    reconnect.lastTry = due - milliseconds(pause);
    Source source;
    ASSERT_TRUE(Reconnect_Open(&reconnect, sample, &stop, &source));
    EXPECT_GE(reconnect.lastTry, due) << pause;
    EXPECT_LT(steady_clock::now(), due + milliseconds(1000)) << pause;
    Source_Close(&source);
    EXPECT_FALSE(Reconnect_Lost(&reconnect)) << "still the same loss";
  }
  EXPECT_TRUE(Reconnect_Back(&reconnect));
  EXPECT_TRUE(Reconnect_Lost(&reconnect));
  EXPECT_EQ(reconnect.tries, 0u) << "the next loss begins quickly";
}

TEST_F(SourceTest, RecordEndsOnASignalAfterTheLastWholeFrame) {
  const std::string first = Stretch(0, 2), path = folder / "live";
  const RudeServer rude({[&](int client) { Answer(client, Stretch(0, 3).substr(0, first.size() + 500)), Await(client); }});
  const std::string name = rude.Name("http");
  const char* const line[] = {VELARTO_TOOL_PATH, "record", name.c_str(), "-o", path.c_str(), nullptr};
  pid_t process = 0;
  ASSERT_EQ(posix_spawn(&process, VELARTO_TOOL_PATH, nullptr, nullptr, const_cast<char* const*>(line), environ), 0);
  while (Read_Text(path).size() < first.size()) std::this_thread::yield();
  const auto begin = std::chrono::steady_clock::now();
  kill(process, SIGINT);
  int status = -1;
  waitpid(process, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, StallTimeOut / 2);
  EXPECT_TRUE(Read_Text(path) == first);
}

TEST_F(SourceTest, FailuresAreOneLine) {
  Write("empty", "");
  Expect_Failure("record empty -o none", "no frame found in empty");
  Expect_Failure("record empty -o ./empty", "./empty is the source itself");
  Expect_Failure("record " + sample + " -o /dev/full", "can't write /dev/full: No space left on device");
  EXPECT_TRUE(Run("record " + sample + " -o - --frames 3").out == Stretch(0, 2));
  EXPECT_EQ(Pictures(), std::vector<std::string>({"empty"}));
  const RudeServer rude({[](int client) {
    for (bool sent = Send(client, "HTTP/1.0 200 OK\r\n"); sent;)
      sent = Send(client, "Endless: " + std::string(1000, 'x') + "\r\n");
  }});
  Expect_Failure("info " + rude.Name("http"), "the header of the response is too long");
}

}  // namespace
