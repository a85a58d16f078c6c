// Maps, the receipts that pictures carry, and the gallery.
#include "tests/tools/ToolFixture.h"

#include <zlib.h>

#include <array>

namespace {

const std::string receiptKeyword("kvSubstance receipt\0", 20);

// Where the chunk with the receipt begins, and its size.
std::pair<size_t, size_t> findReceiptChunk(const std::string& png) {
    const size_t begin = png.find("tEXt" + receiptKeyword) - 4;
    const auto byte = [&](size_t i) {
        return static_cast<size_t>(static_cast<unsigned char>(png.at(begin + i)));
    };
    return {begin, (byte(2) << 8) + byte(3) + 12};
}

std::string receiptOf(const std::string& png) {
    const auto [begin, size] = findReceiptChunk(png);
    return png.substr(begin + 8 + receiptKeyword.size(), size - 12 - receiptKeyword.size());
}

std::string bigEndian(size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 255);
    return bytes;
}

// The picture with another receipt, or its first one.
std::string withReceipt(std::string png, const std::string& receipt) {
    if (png.find(receiptKeyword) != std::string::npos) {
        const auto [begin, size] = findReceiptChunk(png);
        png.erase(begin, size);
    }
    const std::string data = "tEXt" + receiptKeyword + receipt;
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size()));
    constexpr size_t behindHeader = 33;
    return png.insert(behindHeader, bigEndian(data.size() - 4) + data + bigEndian(sum));
}

TEST_F(Tool, MapsHaveTheirOwnDepthAndChannels) {
    const std::string graph = given("formats.xml");
    compilePackage("formats", "<package>" + graph + "</package>");
    compilePackage("other",
                   "<package>" + replaced(replaced(graph, "\"0.2", "\"1"), "\"0.2", "\"1") + "</package>");
    ASSERT_EQ(run("maps formats.kvpkg -o maps").status, 0);
    const struct {
        std::string output;
        int bits, colourType;
        const char* samples;
    } cases[] = {{"srgb8", 8, 6, "124,170,203,204"},
                 {"rgba8", 8, 6, "51,102,153,204"},
                 {"rgba16", 16, 6, "13107,26214,39321,52428"},
                 {"gray8", 8, 0, "51"},
                 {"gray16", 16, 0, "13107"}};
    for (const auto& [output, bits, colourType, samples] : cases) {
        SCOPED_TRACE(output);
        const std::string name = "maps/" + output + ".png";
        const std::string png = read(name);
        ASSERT_GT(png.size(), 33u);
        EXPECT_EQ(png.substr(16, 8), bigEndian(8) + bigEndian(4));
        EXPECT_EQ(png[24], bits);
        EXPECT_EQ(png[25], colourType);
        EXPECT_EQ(png.find("gAMA"), std::string::npos);
        EXPECT_EQ(png.find("sRGB\0", 0, 5) != std::string::npos, output == "srgb8");

        // Verify prints the samples: against a picture of the same kind with another value.
        EXPECT_EQ(run("verify " + name + " formats.kvpkg").status, 0);
        expectPart(run("verify " + name + " other.kvpkg").out,
                   std::string("pixels: 32 of 32, the first at x 0, y 0: ") + samples + " in the picture");
    }

    // Several graphs: a folder each, and values only for one of them.
    compilePackage("two", "<package>" + graph + replaced(graph, "formats", "deep/two") + "</package>");
    ASSERT_EQ(run("maps two.kvpkg -o both --size 16").status, 0);
    EXPECT_EQ(readPng(folder / "both/formats/gray8.png").rgba.size(), 16u * 16 * 4);
    EXPECT_EQ(run("verify both/two/gray16.png two.kvpkg").status, 0);
    EXPECT_EQ(run("maps two.kvpkg -o chosen --graph two").status, 0);
    EXPECT_TRUE(fs::exists(folder / "chosen/gray8.png"));
    expectFailure(run("maps two.kvpkg -o none --graph three"));
    expectFailure(run("maps two.kvpkg -o none --preset Blue"));
    EXPECT_FALSE(fs::exists(folder / "none"));
}

TEST_F(Tool, PicturesOfEveryKindAreMadeAgain) {
    const std::string values = "--size 32 --set level=0.1234567 --set tint=0.9876543,0.1,0.3 ";
    const std::string both = "bottom.kvpkg top.kvpkg ";
    for (const auto& [command, picture, packages] : std::vector<std::array<std::string, 3>>{
             {"render bottom.kvpkg --preset Blue --set level=0.3 -o a.png", "a.png", "bottom.kvpkg"},
             {"render bottom.kvpkg --channel roughness -o a.png", "a.png", "bottom.kvpkg"},
             {"render " + both + values + "-o a.png --save-state state.txt", "a.png", both},
             {"render " + both + "--preset top:Snow --set amount=0.3 -o a.png", "a.png", both},
             {"maps bottom.kvpkg -o maps --state state.txt --set look=noisy", "maps/basecolor.png",
              "bottom.kvpkg"},
             {"maps top.kvpkg -o maps --preset Snow", "maps/Output.png", "top.kvpkg"},
             {"sweep bottom.kvpkg --vary level=0..1:3 -o sweep --sheet a.png", "sweep/2_level=0.5.png",
              "bottom.kvpkg"},
             {"sheet a.png -o s.png", "s.png", ""}}) {
        SCOPED_TRACE(command);
        const Outcome made = run(command);
        ASSERT_EQ(made.status, 0) << made.error;
        const std::string first = read(picture);
        const Outcome verified = run("verify " + picture + " " + packages);
        EXPECT_EQ(verified.status, 0) << verified.out << verified.error;
        EXPECT_EQ(verified.out.compare(0, 6, "equal:"), 0) << verified.out;
        run(command);
        EXPECT_EQ(read(picture), first);
    }
}

TEST_F(Tool, VerifySaysWhatDiffers) {
    Pixels pixels = render("bottom.kvpkg --set level=0.3");
    const std::string png = read("rendered.png");
    const std::string receipt = receiptOf(png);
    compilePackage("other", replaced(given("bottom.xml"), "default=\"0.5\"", "default=\"0.6\""));

    pixels.rgba[4 * (16 * 2 + 3) + 1] ^= 1;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = 16;
    image.format = PNG_FORMAT_RGBA;
    ASSERT_TRUE(png_image_write_to_file(&image, (folder / "foreign.png").string().c_str(), 0,
                                        pixels.rgba.data(), 0, nullptr));
    write("edited.png", withReceipt(read("foreign.png"), receipt));

    const struct {
        const char *from, *to; // in the receipt
        std::vector<std::string> parts;
    } changes[] = {
        {"engineRevision\":", "engineRevision\":9", {"engine: revision 9", "equal all the same: the pixels"}},
        {"\"0.3\"", "\"high\"", {"values: level does not take \"high\"", "pixels: "}},
        {"\"level\"", "\"levle\"", {"values: there is nothing to set", "levle", "pixels: "}},
        {"\"4,4\"", "\"5,3\"", {"size: 16 x 16 pixels in the picture, 32 x 8 pixels rendered"}},
        {"diffuse", "roughness", {"pixels: ", "layout: "}}};
    const auto expectDifference = [this](const std::string& arguments,
                                         const std::vector<std::string>& parts) {
        const Outcome outcome = run("verify " + arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        for (const std::string& part : parts) expectPart(outcome.out, part);
        EXPECT_EQ(outcome.error, "") << arguments;
    };
    for (const auto& [from, to, parts] : changes) {
        write("changed.png", withReceipt(png, replaced(receipt, from, to)));
        expectDifference("changed.png bottom.kvpkg", parts);
    }
    expectDifference("rendered.png other.kvpkg",
                     {"package: other.kvpkg is not the bottom.kvpkg", "equal all the same"});
    expectDifference("edited.png bottom.kvpkg",
                     {"picture: it was changed", "pixels: 1 of 256, the first at x 3, y 2: "});

    write("damaged.png", withReceipt(png, receipt.substr(1)));
    write("version.png", withReceipt(png, replaced(receipt, "receipt\":1", "receipt\":99")));
    for (const char* const arguments :
         {"damaged.png bottom.kvpkg", "version.png bottom.kvpkg", "foreign.png bottom.kvpkg",
          "bottom.xml bottom.kvpkg", "missing.png bottom.kvpkg", "rendered.png", "rendered.png missing.kvpkg",
          "rendered.png bottom.kvpkg top.kvpkg"}) {
        SCOPED_TRACE(arguments);
        expectFailure(run(std::string("verify ") + arguments));
    }
    for (size_t size = 0; size < png.size(); size += 61) {
        write("cut.png", png.substr(0, size));
        expectFailure(run("verify cut.png bottom.kvpkg"));
    }
}

TEST_F(Tool, GalleryShowsEverythingAndNeedsNothingElse) {
    compilePackage("odd",
                   replaced(given("bottom.xml"), "label=\"Level\"", "label=\"&lt;b&gt; &amp; &quot;\""));
    compilePackage(
        "odd", replaced(replaced(read("odd.xml"), "pkg://bottom", "pkg://odd"), "\"Blue\"", "\"../Blue?\""));
    const Outcome outcome = run("gallery bottom.kvpkg top.kvpkg odd.kvpkg -o shown");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const std::string page = read("shown/gallery.html");
    int pictures = 0;
    for (const std::string attribute : {"src=\"", "href=\""})
        for (size_t at = page.find(attribute); at != std::string::npos; at = page.find(attribute, at + 1)) {
            const size_t begin = at + attribute.size();
            const std::string target = page.substr(begin, page.find('"', begin) - begin);
            if (target[0] == '#') continue;
            EXPECT_FALSE(readPng(folder / "shown" / target).rgba.empty()) << target;
            ++pictures;
        }
    EXPECT_EQ(pictures, 2 * (4 + 3 + 4)); // a picture, maps and a preset for each, shown and linked
    for (const char* const part : {"&lt;b&gt; &amp; &quot;", "over bottom", "As the sky", "0 to 1 by 0.1",
                                   "Plain, Noisy", "background:rgb(255,0,0)"})
        expectPart(page, part);
    EXPECT_EQ(page.find("://"), std::string::npos);

    EXPECT_EQ(readPng(folder / "shown/gallery/bottom/preset_Blue.png").rgba,
              render("bottom.kvpkg --preset Blue --size 256").rgba);
    EXPECT_EQ(run("verify shown/gallery/top/preset_Snow.png bottom.kvpkg top.kvpkg").status, 0);
    expectFailure(run("gallery bottom.kvpkg bottom.kvpkg -o shown"));
}

} // namespace
