// Stored objects: header, method, padding, and the way back, byte by byte.
#include "dbobjapi.h"

#include <string>
#include <vector>

#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

class StoredObject : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(b_lzmaCreate(&lzma_), sOKAY);
        b_buffInit(&packed_, tag_);
        b_buffInit(&stored_, tag_);
        b_buffInit(&back_, tag_);
    }
    void TearDown() override {
        b_buffTerm(&packed_);
        b_buffTerm(&stored_);
        b_buffTerm(&back_);
        b_lzmaDestroy(lzma_);
    }

    OAK_RETCODE store(const Bytes &object, OAK_COMPRESS_METHOD method, uint32_t min_size,
                      OAK_ITEM_FORMAT format = OAK_ITEM_FORMAT_COMPACT) {
        b_buffTerm(&packed_);
        b_buffReset(&stored_);
        EXPECT_EQ(b_buffEmitBytesBulk(&packed_, object.data(), object.size()), sOKAY);
        return obj_compress(lzma_, method, min_size, format, &packed_, &stored_);
    }
    std::string stored_hex() const { return oaktest::hex(stored_.data, stored_.len); }
    std::string back_hex() const { return oaktest::hex(back_.data, back_.len); }

    void view(const Bytes &bytes) { b_buffSetStatic(&stored_, bytes.data(), bytes.size()); }

    oaktest::Tag tag_;
    LZMA lzma_ = nullptr;
    OAK_BUFFER packed_{}, stored_{}, back_{};
    OAK_ITEM_FORMAT format_ = static_cast<OAK_ITEM_FORMAT>(0);
};

TEST(StoredHeaders, HaveFixedNumbers) {
    EXPECT_EQ(OAK_COMPRESS_NONE, 1);
    EXPECT_EQ(OAK_COMPRESS_LZMA, 2);
    EXPECT_EQ(OAK_COMPRESS_ZERO, 4);
    EXPECT_EQ(OBJ_COMPACT_NONE, 17);
    EXPECT_EQ(OBJ_COMPACT_LZMA, 18);
    EXPECT_EQ(OBJ_COMPACT_ZERO, 20);
    EXPECT_EQ(OBJ_EXPANDED_NONE, 33);
    EXPECT_EQ(OBJ_EXPANDED_LZMA, 34);
    EXPECT_EQ(OBJ_EXPANDED_ZERO, 36);
    EXPECT_EQ(OAK_OBJ_PADDING, 16);
}

TEST_F(StoredObject, PadsFourteenBytesWithOne) {
    ASSERT_EQ(store(Bytes(14, 0xab), OAK_COMPRESS_NONE, 0), sOKAY);
    EXPECT_EQ(stored_hex(), "11" + std::string("abababababababababababababab") + "00");
}

TEST_F(StoredObject, NeedsNoPaddingBehindFifteenBytes) {
    ASSERT_EQ(store(Bytes(15, 0xab), OAK_COMPRESS_NONE, 0), sOKAY);
    EXPECT_EQ(stored_.len, 16u);
    ASSERT_EQ(store(Bytes(16, 0xab), OAK_COMPRESS_NONE, 0), sOKAY);
    EXPECT_EQ(stored_.len, 32u);
}

TEST_F(StoredObject, MarksFormatAndMethodInItsHeader) {
    const struct {
        OAK_COMPRESS_METHOD method;
        OAK_ITEM_FORMAT format;
        OAK_OBJ_FORMAT header;
    } rows[] = {
        {OAK_COMPRESS_NONE, OAK_ITEM_FORMAT_COMPACT, OBJ_COMPACT_NONE},
        {OAK_COMPRESS_LZMA, OAK_ITEM_FORMAT_COMPACT, OBJ_COMPACT_LZMA},
        {OAK_COMPRESS_ZERO, OAK_ITEM_FORMAT_COMPACT, OBJ_COMPACT_ZERO},
        {OAK_COMPRESS_NONE, OAK_ITEM_FORMAT_EXPANDED, OBJ_EXPANDED_NONE},
        {OAK_COMPRESS_LZMA, OAK_ITEM_FORMAT_EXPANDED, OBJ_EXPANDED_LZMA},
        {OAK_COMPRESS_ZERO, OAK_ITEM_FORMAT_EXPANDED, OBJ_EXPANDED_ZERO},
    };
    std::string compressed;
    for (const auto &row : rows) {
        ASSERT_EQ(store(Bytes(100, 'x'), row.method, 0, row.format), sOKAY);
        EXPECT_EQ(stored_.data[0], row.header);
        if (row.method != OAK_COMPRESS_NONE) { // the mark alone tells the methods apart
            compressed = compressed.empty() ? stored_hex().substr(2) : compressed;
            EXPECT_EQ(stored_hex().substr(2), compressed);
        }
        EXPECT_EQ(stored_.len % OAK_OBJ_PADDING, 0u);
        ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
        EXPECT_EQ(format_, row.format);
        EXPECT_GE(back_.len, 100u);
        EXPECT_EQ(Bytes(back_.data, back_.data + 100), Bytes(100, 'x'));
    }
}

TEST_F(StoredObject, StoresWhatIsBelowTheMinimumWhateverTheMethod) {
    ASSERT_EQ(store(Bytes(9, 'a'), OAK_COMPRESS_LZMA, 10), sOKAY);
    EXPECT_EQ(stored_.data[0], OBJ_COMPACT_NONE);
    ASSERT_EQ(store(Bytes(10, 'a'), OAK_COMPRESS_LZMA, 10), sOKAY);
    // Exactly the minimum is compressed: header, length 10, range coder, padding.
    EXPECT_EQ(stored_hex(), "120a0030eb7c00000000000000000000");
}

TEST_F(StoredObject, StaysCompressedWhenItGrows) {
    const Bytes object = oaktest::unhex("8f 03 d1 7a 5c e6 29 b4 40 9b f2 18 67 ad 31");
    ASSERT_EQ(store(object, OAK_COMPRESS_LZMA, 0), sOKAY);
    EXPECT_EQ(stored_.data[0], OBJ_COMPACT_LZMA);
    EXPECT_EQ(stored_.len, 32u) << "stored as it is it would take 16";
    ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
    EXPECT_EQ(back_hex(), oaktest::hex(object.data(), object.size()));
}

TEST_F(StoredObject, CompressesTheEmptyObjectWhenTheMinimumIsZero) {
    ASSERT_EQ(store({}, OAK_COMPRESS_LZMA, 0), sOKAY);
    EXPECT_EQ(stored_hex(), "12000000000000000000000000000000");
    ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
    EXPECT_EQ(back_.len, 0u);
}

TEST_F(StoredObject, RefusesAnUnknownMethodWithTheHeaderWritten) {
    EXPECT_EQ(store(Bytes(3, 'a'), static_cast<OAK_COMPRESS_METHOD>(3), 0), eSYS_ERROR);
    EXPECT_EQ(stored_hex(), "13");
    EXPECT_EQ(store(Bytes(3, 'a'), static_cast<OAK_COMPRESS_METHOD>(0), 0), eSYS_ERROR);
    EXPECT_EQ(stored_hex(), "10");
}

TEST_F(StoredObject, KeepsItsHeaderInFrontOfAStaticSource) {
    const char object[] = "0123456789abcde";
    b_buffSetStatic(&packed_, object, 15);
    ASSERT_EQ(
        obj_compress(nullptr, OAK_COMPRESS_NONE, 0, OAK_ITEM_FORMAT_COMPACT, &packed_, &stored_),
        sOKAY);
    EXPECT_EQ(stored_hex(), "11303132333435363738396162636465");
}

TEST_F(StoredObject, ReadsBackWithItsPadding) {
    ASSERT_EQ(store(Bytes(5, 'z'), OAK_COMPRESS_NONE, 0), sOKAY);
    ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, nullptr), sOKAY);
    EXPECT_EQ(back_hex(), "7a7a7a7a7a" + std::string(20, '0'));
    EXPECT_EQ(back_.pos, 0u);
}

TEST_F(StoredObject, ReplacesWhatStoodInTheDestination) {
    for (const OAK_COMPRESS_METHOD method : {OAK_COMPRESS_NONE, OAK_COMPRESS_LZMA}) {
        ASSERT_EQ(store(Bytes(15, 'n'), method, 0), sOKAY);
        b_buffReset(&back_);
        ASSERT_EQ(b_buffEmitBytesBulk(&back_, "what stood there", 16), sOKAY);
        ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
        EXPECT_EQ(Bytes(back_.data, back_.data + back_.len), Bytes(15, 'n')) << method;
    }
}

TEST_F(StoredObject, BecomesAViewOfAStaticBuffer) {
    const Bytes bytes = oaktest::unhex("11 0102030405060708090a0b0c0d0e0f");
    view(bytes);
    ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, nullptr), sOKAY);
    EXPECT_EQ(back_.data + back_.pos, bytes.data() + 1);
    EXPECT_EQ(back_.size, 0u);
    EXPECT_EQ(back_.len, 15u);
}

TEST_F(StoredObject, LeavesTheFormatAloneForAnEmptyBuffer) {
    back_.pos = 7;
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
    EXPECT_EQ(format_, 0);
    EXPECT_EQ(back_.pos, 0u);
}

TEST_F(StoredObject, RefusesAHeaderWithAnUnknownMethod) {
    for (const uint8_t header : {0x10, 0x13, 0x15, 0x1f, 0x00, 0x2c}) {
        const Bytes bytes{header, 1, 2, 3};
        view(bytes);
        back_.pos = 3;
        EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), eSYS_ERROR);
        EXPECT_EQ(format_, 0);
        EXPECT_EQ(back_.pos, 0u);
    }
}

TEST_F(StoredObject, HandsOnAnUnknownFormatUnjudged) {
    const Bytes bytes{0x41, 9};
    view(bytes);
    ASSERT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sOKAY);
    EXPECT_EQ(format_, 0x40);
}

TEST_F(StoredObject, ReportsAHeaderThatEndsOrIsMalformed) {
    const Bytes cut{0x91};
    view(cut);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), eEOD);
    const Bytes endless(12, 0xff);
    view(endless);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), eINVVARINT);
    const Bytes no_length{0x12};
    view(no_length);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), sEOS);
    const Bytes far_too_long = oaktest::unhex("12 8080808010");
    view(far_too_long);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, &format_, lzma_), eDBCORRUPTED);
    EXPECT_EQ(format_, 0);
}

// A decipherment that adds its key to each byte.
OAK_RETCODE add_key(void *data, void *bytes, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        static_cast<uint8_t *>(bytes)[i] =
            static_cast<uint8_t>(static_cast<uint8_t *>(bytes)[i] + *static_cast<uint8_t *>(data));
    }
    return sOKAY;
}

OAK_RETCODE refuse(void *, void *, size_t) {
    return eINVENCRYPT;
}

TEST_F(StoredObject, IsDecipheredWholeInMemoryOfItsOwn) {
    uint8_t key = 1;
    const OAK_ENCRYPT_S encipherment{&key, nullptr, add_key};
    const Bytes enciphered = oaktest::unhex("10 000102");
    view(enciphered);
    ASSERT_EQ(obj_convert_in(&back_, &stored_, &encipherment, &format_, lzma_), sOKAY);
    EXPECT_EQ(format_, OAK_ITEM_FORMAT_COMPACT);
    EXPECT_EQ(back_hex(), "010203");
    EXPECT_EQ(enciphered, oaktest::unhex("10 000102")) << "the caller's bytes stay enciphered";
    EXPECT_EQ(stored_hex(), "11010203");
}

TEST_F(StoredObject, StaysDecipheredAfterAFailure) {
    uint8_t key = 1;
    const OAK_ENCRYPT_S encipherment{&key, nullptr, add_key};
    const Bytes enciphered = oaktest::unhex("12 0304");
    ASSERT_EQ(b_buffEmitBytesBulk(&stored_, enciphered.data(), enciphered.size()), sOKAY);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, &encipherment, &format_, lzma_), eSYS_ERROR);
    EXPECT_EQ(stored_hex(), "130405");
}

TEST_F(StoredObject, ReturnsWhatTheDeciphermentSays) {
    const OAK_ENCRYPT_S encipherment{nullptr, nullptr, refuse};
    const Bytes bytes{0x11, 1};
    view(bytes);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, &encipherment, &format_, lzma_), eINVENCRYPT);
    EXPECT_EQ(format_, 0);
}

TEST_F(StoredObject, IsReadFromItsPositionByTheInnerHalf) {
    const Bytes bytes = oaktest::unhex("ffff 11 0a0b");
    view(bytes);
    stored_.pos = 2;
    ASSERT_EQ(obj_decompress(nullptr, &stored_, &back_, &format_), sOKAY);
    EXPECT_EQ(back_.len, 2u);
    EXPECT_EQ(back_.data[0], 0x0a);
    EXPECT_EQ(format_, OAK_ITEM_FORMAT_COMPACT);
    EXPECT_EQ(obj_decompress(nullptr, &packed_, &back_, &format_), eEOD) << "nothing to read";
    OAK_BUFFER holding;
    b_buffInit(&holding, tag_);
    ASSERT_EQ(b_buffEmitByte(&holding, 0x09), sOKAY);
    stored_.pos = 2;
    ASSERT_EQ(obj_decompress(nullptr, &stored_, &holding, &format_), sOKAY);
    EXPECT_EQ(oaktest::hex(holding.data, holding.len), "090a0b");
    b_buffTerm(&holding);
}

TEST_F(StoredObject, RefusesNullArguments) {
    EXPECT_EQ(obj_compress(lzma_, OAK_COMPRESS_NONE, 0, OAK_ITEM_FORMAT_COMPACT, nullptr, &stored_),
              eINVNULLARG);
    EXPECT_EQ(obj_compress(lzma_, OAK_COMPRESS_NONE, 0, OAK_ITEM_FORMAT_COMPACT, &packed_, nullptr),
              eINVNULLARG);
    EXPECT_EQ(
        obj_compress(nullptr, OAK_COMPRESS_LZMA, 0, OAK_ITEM_FORMAT_COMPACT, &packed_, &stored_),
        eINVNULLARG);
    EXPECT_EQ(obj_convert_in(nullptr, &stored_, nullptr, &format_, lzma_), eINVNULLARG);
    EXPECT_EQ(obj_convert_in(&back_, nullptr, nullptr, &format_, lzma_), eINVNULLARG);
    EXPECT_EQ(obj_convert_in(&back_, &stored_, nullptr, nullptr, lzma_), eINVNULLARG);
    EXPECT_EQ(obj_decompress(lzma_, nullptr, &back_, &format_), eINVNULLARG);
    EXPECT_EQ(obj_decompress(lzma_, &stored_, nullptr, &format_), eINVNULLARG);
    EXPECT_EQ(obj_decompress(lzma_, &stored_, &back_, nullptr), eINVNULLARG);
}

TEST_F(StoredObject, SurvivesMemoryThatEnds) {
    uint8_t key = 0;
    const OAK_ENCRYPT_S encipherment{&key, nullptr, add_key};
    for (const OAK_COMPRESS_METHOD method : {OAK_COMPRESS_NONE, OAK_COMPRESS_LZMA}) {
        const Bytes object(700, 'q');
        const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::memory, {eNOMEMORY}, [&] {
            OAK_BUFFER packed, stored, view, back;
            for (OAK_BUFFER *buffer : {&packed, &stored, &view, &back}) {
                b_buffInit(buffer, tag_);
            }
            b_buffSetStatic(&packed, object.data(), object.size());
            OAK_RETCODE status =
                obj_compress(lzma_, method, 0, OAK_ITEM_FORMAT_COMPACT, &packed, &stored);
            if (status == sOKAY) {
                b_buffSetStatic(&view, stored.data, stored.len);
                status = obj_convert_in(&back, &view, &encipherment, &format_, lzma_);
            }
            if (status == sOKAY) {
                EXPECT_EQ(Bytes(back.data, back.data + 700), object);
            }
            for (OAK_BUFFER *buffer : {&back, &view, &stored, &packed}) {
                b_buffTerm(buffer);
            }
            return status;
        });
        EXPECT_EQ(runs > 0, oaktest::faults_are_injected());
    }
}

} // namespace
