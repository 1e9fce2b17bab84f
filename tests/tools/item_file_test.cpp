// Item files: the form byte by byte, reading whatever is damaged, appending, and
// that a failed append leaves the file as it was.
#include "item_file.h"

#include <cstring>
#include <fstream>

#include "tool_run.h"

namespace {

using tools::Complaint;
using tools::Item;
using tools::ItemReader;
using tools::ItemWriter;
using Bytes = std::vector<uint8_t>;

constexpr size_t kRooms[] = {16, 48, 1 << 18};

/// The form once more, plainly: a header, and an object of so many bytes for each
/// item, filled with the number of its row.
Bytes plain_file(const std::vector<uint32_t> &lengths) {
    Bytes items;
    uint8_t row = 0;
    for (const uint32_t length : lengths) {
        ++row;
        const uint8_t header[] = {0xF5,
                                  'O',
                                  'B',
                                  'J',
                                  0,
                                  0,
                                  static_cast<uint8_t>(length >> 8),
                                  static_cast<uint8_t>(length),
                                  0,
                                  0,
                                  0,
                                  0,
                                  0,
                                  0,
                                  0,
                                  row};
        items.insert(items.end(), header, header + sizeof header);
        items.insert(items.end(), length, row);
    }
    const size_t size = items.size() + 16;
    Bytes file = {'O',
                  'A',
                  'K',
                  1,
                  0,
                  0,
                  0,
                  0,
                  0,
                  0,
                  static_cast<uint8_t>(size >> 8),
                  static_cast<uint8_t>(size)};
    for (int i = 0; i < 4; ++i) {
        file.push_back(static_cast<uint8_t>(~(file[i] ^ file[i + 4] ^ file[i + 8])));
    }
    file.insert(file.end(), items.begin(), items.end());
    return file;
}

struct ReadItem {
    uint64_t place, end, row;
    bool has_header;
    Bytes object;
    Complaint damage;
};

struct ReadFile {
    Complaint header;
    std::vector<ReadItem> items;
    Complaint ending;
    uint64_t rest = 0;
};

ReadFile read(const Bytes &bytes, size_t room = ItemReader::kFirstRoom) {
    ItemReader reader(tools::item_source(std::span<const uint8_t>(bytes)), room);
    ReadFile file;
    file.header = reader.read_header();
    for (Item item; reader.next(&item);) {
        file.items.push_back({item.place, item.end, item.row, item.has_header,
                              Bytes(item.object.begin(), item.object.end()), item.damage});
    }
    Item more;
    EXPECT_FALSE(reader.next(&more));
    file.ending = reader.ending();
    file.rest = reader.rest();
    EXPECT_EQ(reader.empty(), bytes.empty());
    return file;
}

std::string damaged(const std::string &why) {
    return "eDBCORRUPTED (The stored data is damaged): " + why;
}

void expect_item(const ReadItem &item, uint64_t place, uint64_t row, uint32_t length,
                 const Complaint &damage = "") {
    EXPECT_EQ(item.place, place);
    EXPECT_TRUE(item.has_header);
    EXPECT_EQ(item.row, row);
    EXPECT_EQ(item.object.size(), length);
    EXPECT_EQ(item.end, place + 16 + length);
    EXPECT_EQ(item.damage, damage);
}

// ---- The form ----------------------------------------------------------------

TEST(ItemFile, HeadersAreTheirBytes) {
    EXPECT_EQ(oaktest::hex(tools::file_header(0x40).data(), 16),
              "4f414b010000000000000040b0beb4be");
    EXPECT_EQ(oaktest::hex(tools::file_header(0x0123456789ABCDEF).data(), 16),
              "4f414b010123456789abcdef38363c76");
    EXPECT_EQ(oaktest::hex(tools::item_header(0x04000000, 0x0102030405060708).data(), 16),
              "f54f424a040000000102030405060708");
}

// ---- Reading what is sound ---------------------------------------------------

TEST(ItemFile, ReadsItemsOneAfterTheOther) {
    for (const size_t room : kRooms) {
        const ReadFile file = read(plain_file({16, 48, 4096, 32}), room);
        EXPECT_EQ(file.header, "");
        EXPECT_EQ(file.ending, "");
        EXPECT_EQ(file.rest, 0u);
        ASSERT_EQ(file.items.size(), 4u);
        expect_item(file.items[0], 16, 1, 16);
        expect_item(file.items[1], 48, 2, 48);
        expect_item(file.items[2], 112, 3, 4096);
        expect_item(file.items[3], 4224, 4, 32);
        EXPECT_EQ(file.items[2].object, Bytes(4096, 3));
    }
}

TEST(ItemFile, AFileMayHaveNoItems) {
    const ReadFile file = read(plain_file({}));
    EXPECT_EQ(file.header, "");
    EXPECT_EQ(file.ending, "");
    EXPECT_TRUE(file.items.empty());
}

TEST(ItemFile, BytesBehindTheValidOnesAreCountedAndNotRead) {
    for (const size_t room : kRooms) {
        Bytes bytes = plain_file({16, 16});
        bytes.insert(bytes.end(), 100, 0xF5);
        const ReadFile file = read(bytes, room);
        EXPECT_EQ(file.items.size(), 2u);
        EXPECT_EQ(file.ending, "");
        EXPECT_EQ(file.rest, 100u);
    }
}

// ---- Reading what is damaged -------------------------------------------------

TEST(ItemFile, TellsADamagedFileHeaderAndReadsOn) {
    const std::pair<size_t, const char *> cases[] = {
        {0, "the file does not begin as an item file does"},
        {3, "the file does not begin as an item file does"},
        {4, "the file header's length and its check do not agree"},
        {11, "the file header's length and its check do not agree"},
        {12, "the file header's length and its check do not agree"},
        {15, "the file header's length and its check do not agree"},
    };
    for (const auto &[byte, why] : cases) {
        Bytes bytes = plain_file({16, 48});
        bytes[byte] ^= 0x10;
        const ReadFile file = read(bytes);
        EXPECT_EQ(file.header, damaged(why));
        ASSERT_EQ(file.items.size(), 2u) << byte;
        expect_item(file.items[1], 48, 2, 48);
        EXPECT_EQ(file.ending, "");
    }
}

TEST(ItemFile, RefusesImpossibleValidLengths) {
    for (const uint64_t length : {0, 15, 24}) {
        Bytes bytes = plain_file({16});
        const tools::ItemBytes header = tools::file_header(length);
        std::copy(header.begin(), header.end(), bytes.begin());
        const ReadFile file = read(bytes);
        EXPECT_EQ(file.header,
                  damaged("the file header's length " + std::to_string(length) + " is impossible"));
        EXPECT_EQ(file.items.size(), 1u);
    }
}

TEST(ItemFile, TellsAFileTooShortForItsHeader) {
    EXPECT_EQ(read({}).header, damaged("the file is empty"));
    for (size_t size = 1; size < 16; ++size) {
        Bytes bytes = plain_file({});
        bytes.resize(size);
        const ReadFile file = read(bytes);
        EXPECT_EQ(file.header, damaged("the file ends inside its header"));
        EXPECT_TRUE(file.items.empty());
    }
}

TEST(ItemFile, AFlippedByteOfAnItemHeaderCostsNoOtherItem) {
    const Bytes sound = plain_file({16, 48, 32});
    const size_t places[] = {16, 48, 112};
    for (size_t n = 0; n < 3; ++n) {
        for (size_t byte = 0; byte < 16; ++byte) {
            for (const int bit : {0, 3, 4, 7}) {
                for (const size_t room : kRooms) {
                    Bytes bytes = sound;
                    bytes[places[n] + byte] ^= static_cast<uint8_t>(1 << bit);
                    const ReadFile file = read(bytes, room);
                    EXPECT_EQ(file.header, "");
                    EXPECT_EQ(file.ending, "");
                    ASSERT_EQ(file.items.size(), 3u) << n << " " << byte << " " << bit;
                    for (size_t i = 0; i < 3; ++i) {
                        EXPECT_EQ(file.items[i].place, places[i]);
                        EXPECT_EQ(file.items[i].damage.empty(), i != n)
                            << n << " " << byte << " " << bit << ": " << file.items[i].damage;
                        EXPECT_EQ(file.items[i].object,
                                  Bytes(file.items[i].object.size(), static_cast<uint8_t>(i + 1)));
                        EXPECT_EQ(file.items[i].object.size(), i == 0 ? 16u : i == 1 ? 48u : 32u);
                    }
                }
            }
        }
    }
}

TEST(ItemFile, SaysWhatIsDamagedInAnItem) {
    const auto second_damage = [](size_t byte, uint8_t value) {
        Bytes bytes = plain_file({16, 48, 32});
        bytes[48 + byte] = value;
        const ReadFile file = read(bytes);
        EXPECT_EQ(file.items.size(), 3u);
        return file.items[1].damage;
    };
    EXPECT_EQ(second_damage(0, 0xF4), damaged("the item's marker is not right"));
    EXPECT_EQ(second_damage(7, 0), damaged("the item's length is impossible"));
    EXPECT_EQ(second_damage(7, 49), damaged("the item's length is impossible"));
    EXPECT_EQ(second_damage(4, 0x04), damaged("the item's length is impossible"));
    EXPECT_EQ(second_damage(6, 0x01), damaged("the file ends inside the item"));
    EXPECT_EQ(second_damage(7, 32), damaged("no item begins where this one ends"));
    EXPECT_EQ(second_damage(7, 96), damaged("no item begins where this one ends"));
    EXPECT_EQ(second_damage(15, 9), damaged("row number 9 where 2 is due"));
    EXPECT_EQ(second_damage(15, 0), damaged("row number 0 where 2 is due"));
}

TEST(ItemFile, PassesOverWhatIsNoItem) {
    for (const size_t room : kRooms) {
        Bytes bytes = plain_file({16, 48, 32, 16});
        std::fill(bytes.begin() + 48, bytes.begin() + 112, 0xAB); // header and object of row 2
        const ReadFile file = read(bytes, room);
        ASSERT_EQ(file.items.size(), 4u);
        EXPECT_FALSE(file.items[1].has_header);
        EXPECT_EQ(file.items[1].place, 48u);
        EXPECT_EQ(file.items[1].end, 112u);
        EXPECT_TRUE(file.items[1].object.empty());
        EXPECT_EQ(file.items[1].damage, damaged("no item begins here"));
        expect_item(file.items[2], 112, 3, 32);
        expect_item(file.items[3], 160, 4, 16);
    }
}

TEST(ItemFile, RowNumbersNeedOnlyAscendBehindALoss) {
    Bytes bytes = plain_file({16, 16, 16});
    std::fill(bytes.begin() + 48, bytes.begin() + 80, 0);
    bytes[80 + 15] = 1; // as the row before the loss
    ReadFile file = read(bytes);
    ASSERT_EQ(file.items.size(), 3u);
    EXPECT_EQ(file.items[2].damage, damaged("row number 1, which is not above those before"));
    bytes[80 + 15] = 7;
    file = read(bytes);
    ASSERT_EQ(file.items.size(), 3u);
    EXPECT_EQ(file.items[2].damage, "");
}

TEST(ItemFile, ALengthThatTakesInAllItemsBehindIsNotBelieved) {
    Bytes bytes = plain_file({16, 16, 16});
    bytes[16 + 7] = 80; // up to the end
    const ReadFile file = read(bytes);
    ASSERT_EQ(file.items.size(), 3u);
    expect_item(file.items[0], 16, 1, 16, damaged("no item begins where this one ends"));
    expect_item(file.items[1], 48, 2, 16);
}

TEST(ItemFile, TellsAFileThatWasCut) {
    const Bytes sound = plain_file({16, 48});
    for (size_t size = 16; size < sound.size(); ++size) {
        for (const size_t room : kRooms) {
            Bytes bytes(sound.begin(), sound.begin() + static_cast<ptrdiff_t>(size));
            const ReadFile file = read(bytes, room);
            EXPECT_EQ(file.header, "");
            EXPECT_EQ(file.ending, damaged("the file ends at " + std::to_string(size) +
                                           " where its header promises 112 bytes"));
            for (const ReadItem &item : file.items) {
                EXPECT_EQ(item.damage.empty(), item.end <= size && item.object.size() >= 16 &&
                                                   (item.place == 16 || size == sound.size()))
                    << size << ": " << item.damage;
            }
        }
    }
}

TEST(ItemFile, HostileBytesAreReadToTheEnd) {
    oaktest::Random random(11);
    for (int run = 0; run < 300; ++run) {
        Bytes bytes = plain_file({16, 48, 32, 16});
        for (uint64_t flips = random.below(40); flips > 0; --flips) {
            bytes[random.below(bytes.size())] = static_cast<uint8_t>(random.next());
        }
        const ReadFile file = read(bytes, 16);
        uint64_t place = 16;
        for (const ReadItem &item : file.items) {
            EXPECT_EQ(item.place, place);
            EXPECT_GT(item.end, item.place);
            place = item.end;
        }
    }
}

TEST(ItemFile, TellsThatAFileCannotBeRead) {
    ItemReader at_once([](uint8_t *, uint32_t) { return OSL_READ_ERROR; });
    EXPECT_EQ(at_once.read_header(), tools::status_text(eFILEIO));
    const Bytes bytes = plain_file({16, 16});
    int calls = 0;
    ItemReader later(
        [&](uint8_t *place, uint32_t count) {
            if (calls++ > 0) {
                return OSL_READ_ERROR;
            }
            std::memcpy(place, bytes.data(), count);
            return count;
        },
        32);
    EXPECT_EQ(later.read_header(), "");
    Item item;
    while (later.next(&item)) {
        EXPECT_NE(item.damage, "");
    }
    EXPECT_EQ(later.ending(), tools::status_text(eFILEIO));
}

// ---- Writing -----------------------------------------------------------------

Bytes file_bytes(const oaktest::Workplace &place, const char *name) {
    const std::string text = place.read(name);
    return Bytes(text.begin(), text.end());
}

/// Appends objects of so many bytes, filled with the number of their row.
Complaint append(ItemWriter *writer, const std::vector<uint32_t> &lengths) {
    for (const uint32_t length : lengths) {
        const Bytes object(length, static_cast<uint8_t>(writer->next_row()));
        OAK_BUFFER *out = writer->begin_item();
        if (out == nullptr || b_buffEmitBytesBulk(out, object.data(), object.size()) != sOKAY) {
            return "memory";
        }
        if (Complaint complaint = writer->end_item(); !complaint.empty()) {
            return complaint;
        }
    }
    return {};
}

Complaint append_to(const std::string &name, const std::vector<uint32_t> &lengths) {
    ItemWriter writer;
    Complaint complaint = writer.open(name.c_str());
    if (complaint.empty()) {
        complaint = append(&writer, lengths);
    }
    return complaint.empty() ? writer.commit() : complaint;
}

TEST(ItemFile, AppendsToANewFileAndToAnOldOne) {
    const oaktest::Workplace place;
    EXPECT_EQ(append_to(place.path("items"), {16, 48}), "");
    EXPECT_EQ(file_bytes(place, "items"), plain_file({16, 48}));
    EXPECT_EQ(append_to(place.path("items"), {32}), "");
    EXPECT_EQ(file_bytes(place, "items"), plain_file({16, 48, 32}));
    EXPECT_EQ(append_to(place.path("items"), {}), "");
    EXPECT_EQ(file_bytes(place, "items"), plain_file({16, 48, 32}));
    EXPECT_EQ(append_to(place.path("none"), {}), "");
    EXPECT_EQ(file_bytes(place, "none"), plain_file({}));
    place.write("empty", "");
    EXPECT_EQ(append_to(place.path("empty"), {16}), "");
    EXPECT_EQ(file_bytes(place, "empty"), plain_file({16}));
}

TEST(ItemFile, TellsWhatWasWritten) {
    const oaktest::Workplace place;
    const std::string name = place.path("items");
    ItemWriter writer;
    ASSERT_EQ(writer.open(name.c_str()), "");
    EXPECT_EQ(writer.next_row(), 1u);
    EXPECT_EQ(writer.file_length(), 16u);
    ASSERT_EQ(append(&writer, {16, 48}), "");
    EXPECT_EQ(writer.next_row(), 3u);
    EXPECT_EQ(writer.object_bytes(), 64u);
    EXPECT_EQ(writer.file_length(), 112u);
    EXPECT_EQ(writer.commit(), "");
}

TEST(ItemFile, WritesOverTheRestOfAnAppendThatWasCutShort) {
    const oaktest::Workplace place;
    const Bytes sound = plain_file({16});
    std::string text(sound.begin(), sound.end());
    place.write("items", text + std::string(1000, 'x'));
    EXPECT_EQ(append_to(place.path("items"), {32}), "");
    EXPECT_EQ(file_bytes(place, "items"), plain_file({16, 32}));
}

TEST(ItemFile, WithoutACommitTheFileIsAsItWas) {
    const oaktest::Workplace place;
    const std::vector<uint32_t> many(3000, 4096); // more than is held in memory
    const std::string items = place.path("items");
    const std::string fresh = place.path("fresh");
    ASSERT_EQ(append_to(items, {16}), "");
    {
        ItemWriter writer;
        ASSERT_EQ(writer.open(items.c_str()), "");
        ASSERT_EQ(append(&writer, many), "");
        EXPECT_GT(file_bytes(place, "items").size(), 1000000u);
        EXPECT_EQ(read(file_bytes(place, "items")).items.size(), 1u) << "in the middle of it";
        ItemWriter other;
        ASSERT_EQ(other.open(fresh.c_str()), "");
        ASSERT_EQ(append(&other, many), "");
        EXPECT_EQ(read(file_bytes(place, "fresh")).items.size(), 0u);
    }
    EXPECT_EQ(file_bytes(place, "items"), plain_file({16}));
    EXPECT_FALSE(place.has("fresh"));
    {
        ItemWriter writer;
        ASSERT_EQ(writer.open(fresh.c_str()), "");
        EXPECT_TRUE(place.has("fresh"));
    }
    EXPECT_FALSE(place.has("fresh"));
    place.write("empty", "");
    const std::string empty = place.path("empty");
    {
        ItemWriter writer;
        ASSERT_EQ(writer.open(empty.c_str()), "");
        ASSERT_EQ(append(&writer, many), "");
    }
    EXPECT_TRUE(place.has("empty"));
    EXPECT_EQ(place.read("empty"), "");
}

TEST(ItemFile, OneWriterAtATime) {
    const oaktest::Workplace place;
    const std::string name = place.path("items");
    ASSERT_EQ(append_to(name, {16}), "");
    ItemWriter first;
    ASSERT_EQ(first.open(name.c_str()), "");
    ItemWriter second;
    EXPECT_EQ(second.open(name.c_str()), name + ": " + tools::status_text(eFILEINUSE));
    ASSERT_EQ(append(&first, {16}), "");
    EXPECT_EQ(first.commit(), "");
    EXPECT_EQ(second.open(name.c_str()), "");
}

TEST(ItemFile, NothingIsAppendedToADamagedFile) {
    const oaktest::Workplace place;
    const std::string name = place.path("items");
    const Bytes sound = plain_file({16, 16});
    for (const size_t byte : {0, 9, 16, 48, 52, 63}) {
        Bytes bytes = sound;
        bytes[byte] ^= 0xFF;
        const std::string text(bytes.begin(), bytes.end());
        place.write("items", text);
        EXPECT_NE(append_to(name, {16}).find("eDBCORRUPTED"), std::string::npos) << byte;
        EXPECT_EQ(place.read("items"), text);
    }
    std::string cut(sound.begin(), sound.end() - 16);
    place.write("items", cut);
    EXPECT_NE(append_to(name, {16}).find("eDBCORRUPTED"), std::string::npos);
    EXPECT_EQ(place.read("items"), cut);
    place.write("items", "no item file at all, but a text");
    EXPECT_EQ(append_to(name, {16}),
              name + ": at 0: " + damaged("the file does not begin as an item file does"));
}

TEST(ItemFile, NoObjectIsLongerThanItsLimit) {
    const oaktest::Workplace place;
    EXPECT_EQ(append_to(place.path("items"), {tools::kLongestObject}), "");
    EXPECT_EQ(append_to(place.path("items"), {tools::kLongestObject + 16}),
              place.path("items") + ": " + tools::status_text(eBADDATALEN));
    EXPECT_EQ(std::filesystem::file_size(place.path("items")), 32 + tools::kLongestObject);
}

TEST(ItemFile, AFailedAppendLeavesWhatWasThere) {
    const oaktest::Workplace place;
    const std::string items = place.path("items");
    const Bytes before = plain_file({16, 16});
    const Bytes after = plain_file({16, 16, 16});
    const auto runs = oaktest::sweep_faults(oaktest::Resource::file, {eFILEIO}, [&] {
        place.write("items", std::string(before.begin(), before.end()));
        const bool failed = !append_to(items, {16}).empty();
        // What a reader sees; behind the valid bytes there may be more, where the
        // system refuses everything.
        const ReadFile file = read(file_bytes(place, "items"));
        EXPECT_EQ(file.header, "");
        EXPECT_EQ(file.ending, "");
        EXPECT_EQ(file.items.size(), failed ? 2u : 3u);
        if (!failed) {
            EXPECT_EQ(file_bytes(place, "items"), after);
        }
        return failed ? eFILEIO : sOKAY;
    });
    EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
}

TEST(ItemFile, AFailedAppendOverTheRestOfAnotherLeavesWhatWasThere) {
    const oaktest::Workplace place;
    const std::string items = place.path("items");
    Bytes before = plain_file({16, 16});
    before.insert(before.end(), 100, 0xF5); // more than is appended, so the file is cut
    const Bytes after = plain_file({16, 16, 16});
    oaktest::sweep_faults(oaktest::Resource::file, {eFILEIO}, [&] {
        place.write("items", std::string(before.begin(), before.end()));
        const Complaint complaint = append_to(items, {16});
        const ReadFile file = read(file_bytes(place, "items"));
        EXPECT_EQ(file.header, "");
        EXPECT_EQ(file.ending, "");
        EXPECT_EQ(file.items.size(), complaint.empty() ? 3u : 2u) << complaint;
        if (complaint.empty()) {
            EXPECT_EQ(file_bytes(place, "items"), after);
        } else {
            EXPECT_EQ(complaint.rfind(items + ": ", 0), 0u) << complaint;
        }
        return complaint.empty() ? sOKAY : eFILEIO;
    });
}

TEST(ItemFile, AFailedAppendForWantOfMemoryLeavesWhatWasThere) {
    const oaktest::Workplace place;
    const std::string items = place.path("items");
    const Bytes before = plain_file({16});
    oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
        place.write("items", std::string(before.begin(), before.end()));
        const bool failed = !append_to(items, {16, 4096}).empty();
        EXPECT_EQ(file_bytes(place, "items"), failed ? before : plain_file({16, 16, 4096}));
        return failed ? eNOMEMORY : sOKAY;
    });
}

// ---- The example of the description -------------------------------------------

TEST(ItemFile, TheExampleOfTheDescriptionIsWhatIsWritten) {
    const std::string page = oaktest::read_all(OAK_SOURCE_DIR "/docs/itemfile.md");
    const size_t start = page.find("```hex\n");
    ASSERT_NE(start, std::string::npos);
    const size_t begin = start + 7;
    const Bytes example = oaktest::unhex(page.substr(begin, page.find("```", begin) - begin));
    EXPECT_EQ(example.size(), 64u);
    const oaktest::Workplace place;
    place.write("rows.csv", "name,born,alive\nAda,1815-12-10,false\n");
    const oaktest::Result run = place.run("oakpack", {"--catalog", oaktest::example("library.json"),
                                                      "--table", "author", "rows.csv", "items"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(file_bytes(place, "items"), example);
}

} // namespace
