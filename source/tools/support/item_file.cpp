// Item files, read and written.
//
// The reader holds a window of the file: what was not delivered yet, and the item
// that was delivered last. An item is sound when its marker stands, its length
// is possible, and the next header stands nowhere but where it ends. Where that
// is not so, reading goes on at the next multiple of 16 at which a marker stands;
// what lies between is the damaged item's. One byte of a header that is damaged
// costs no neighbour: a header without its marker is still known by the number of
// its row.
#include "item_file.h"

#include <cstring>

namespace tools {

namespace {

constexpr uint32_t kFileMagic = 0x4F414B01;  // "OAK" and the version of the form, 1
constexpr uint32_t kItemMarker = 0xF54F424A; // 0xF5, which no UTF-8 text holds, and "OBJ"
constexpr size_t kFlushAt = 1 << 16;         // bytes gathered before they are written
constexpr uint64_t kAnyRow = 0;              // what is expected where items were lost

template <class Number>
void put(uint8_t *to, Number value) {
    for (size_t i = sizeof value; i-- > 0;) {
        to[i] = static_cast<uint8_t>(value);
        value = static_cast<Number>(value >> 7 >> 1);
    }
}

template <class Number>
Number get(const uint8_t *from) {
    Number value = 0;
    for (size_t i = 0; i < sizeof value; ++i) {
        value = static_cast<Number>(value << 8 | from[i]);
    }
    return value;
}

// What the last word of a file header must be.
uint32_t check_of(const uint8_t *header) {
    return ~(get<uint32_t>(header) ^ get<uint32_t>(header + 4) ^ get<uint32_t>(header + 8));
}

bool is_possible_length(uint32_t length) {
    return length >= kItemAlignment && length <= kLongestObject && length % kItemAlignment == 0;
}

uint32_t length_at(const uint8_t *header) {
    return get<uint32_t>(header + 4);
}

uint64_t row_at(const uint8_t *header) {
    return get<uint64_t>(header + 8);
}

std::string damaged(const std::string &what) {
    return status_text(eDBCORRUPTED) + ": " + what;
}

} // namespace

ItemBytes file_header(uint64_t valid_length) {
    ItemBytes bytes{};
    put(bytes.data(), kFileMagic);
    put(bytes.data() + 4, valid_length);
    put(bytes.data() + 12, check_of(bytes.data()));
    return bytes;
}

ItemBytes item_header(uint32_t object_length, uint64_t row) {
    ItemBytes bytes{};
    put(bytes.data(), kItemMarker);
    put(bytes.data() + 4, object_length);
    put(bytes.data() + 8, row);
    return bytes;
}

ItemReader::Source item_source(OSL_FH file) {
    return [file](uint8_t *place, uint32_t count) { return osl_fileRead(file, place, count); };
}

ItemReader::Source item_source(std::span<const uint8_t> bytes) {
    return [bytes](uint8_t *place, uint32_t count) mutable {
        const size_t got = bytes.size() < count ? bytes.size() : count;
        if (got > 0) {
            std::memcpy(place, bytes.data(), got);
        }
        bytes = bytes.subspan(got);
        return static_cast<uint32_t>(got);
    };
}

// ---- The window -------------------------------------------------------------

ItemReader::ItemReader(Source source, size_t first_room)
    : source_(std::move(source)),
      buffer_(first_room < kItemAlignment ? kItemAlignment : first_room) {}

// Sees to it that `count` bytes of the valid part stand from begin_ on; false
// when the valid part or the file ends before.
bool ItemReader::has(size_t count) {
    if (count > valid_length_ - position()) {
        return false;
    }
    while (end_ - begin_ < count && !source_ended_) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        base_ += begin_;
        end_ -= begin_;
        begin_ = 0;
        if (end_ > buffer_.size() / 2) {
            buffer_.resize(buffer_.size() * 2);
        }
        const uint32_t wanted = static_cast<uint32_t>(buffer_.size() - end_);
        const uint32_t got = source_(buffer_.data() + end_, wanted);
        if (got == OSL_READ_ERROR) {
            ending_ = status_text(eFILEIO);
            source_ended_ = true;
            break;
        }
        end_ += got;
        source_ended_ = got < wanted;
    }
    return end_ - begin_ >= count;
}

bool ItemReader::is_header(size_t place) const {
    return get<uint32_t>(buffer_.data() + begin_ + place) == kItemMarker;
}

uint64_t ItemReader::row_of(size_t place) const {
    return row_at(buffer_.data() + begin_ + place);
}

// The first place from `from` to before `limit` at which a marker stands; null
// for none. The bytes up to there are in the window then.
const uint8_t *ItemReader::find_header(size_t from, size_t limit) {
    for (size_t place = from; place < limit && has(place + kItemHeaderSize);
         place += kItemAlignment) {
        if (is_header(place)) {
            return buffer_.data() + begin_ + place;
        }
    }
    return nullptr;
}

// Whether an item of `whole` bytes, all of which are there, ends where it says.
// With the next row's header there it does. Where that header is damaged or lost
// it does too, unless it stands elsewhere: as the first one inside, or as the
// next one behind. Only first ones count, so that hostile bytes are not looked at
// again and again.
bool ItemReader::is_followed(size_t whole, uint64_t next_row) {
    if (has(whole + kItemHeaderSize)) {
        const bool has_marker = is_header(whole);
        const bool has_row = row_of(whole) == next_row;
        if (has_marker && has_row) {
            return true;
        }
        const uint8_t *next =
            has_marker || has_row ? nullptr : find_header(whole + kItemAlignment, kLongestObject);
        if (next != nullptr && row_at(next) == next_row) {
            return false;
        }
    }
    const uint8_t *inside = find_header(kItemAlignment, whole);
    return inside == nullptr || row_at(inside) != next_row;
}

// ---- Reading ----------------------------------------------------------------

Complaint ItemReader::read_header() {
    if (!has(kFileHeaderSize)) {
        empty_ = end_ == 0;
        begin_ = end_;
        if (!ending_.empty()) {
            return ending_;
        }
        return damaged(empty_ ? "the file is empty" : "the file ends inside its header");
    }
    const uint8_t *header = buffer_.data() + begin_;
    begin_ += kFileHeaderSize;
    const uint64_t valid_length = get<uint64_t>(header + 4);
    if (get<uint32_t>(header) != kFileMagic) {
        return damaged("the file does not begin as an item file does");
    }
    if (get<uint32_t>(header + 12) != check_of(header)) {
        return damaged("the file header's length and its check do not agree");
    }
    if (valid_length < kFileHeaderSize || valid_length % kItemAlignment != 0) {
        return damaged("the file header's length " + std::to_string(valid_length) +
                       " is impossible");
    }
    valid_length_ = valid_length;
    return {};
}

bool ItemReader::next(Item *item) {
    begin_ += pending_;
    pending_ = 0;
    *item = Item();
    item->place = position();
    if (!has(1)) {
        finish();
        return false;
    }
    read_item(item);
    take_row_number(item);
    item->end = position() + pending_;
    return true;
}

// Finds out what stands at begin_, where there is at least a byte.
void ItemReader::read_item(Item *item) {
    if (!has(kItemHeaderSize)) {
        pending_ = end_ - begin_;
        item->damage = damaged("the file ends inside an item header");
        return;
    }
    item->row = row_of(0);
    item->length = length_at(buffer_.data() + begin_);
    const bool has_marker = is_header(0);
    item->has_header = has_marker || (expected_row_ != kAnyRow && item->row == expected_row_);
    const char *fault = item->has_header ? fault_of_length(*item) : "no item begins here";
    if (fault != nullptr) {
        item->damage = damaged(fault);
        pass_to_header(item->has_header);
    } else {
        pending_ = kItemHeaderSize + item->length;
        item->damage = has_marker ? Complaint() : damaged("the item's marker is not right");
    }
    if (item->has_header && pending_ >= kItemHeaderSize) {
        item->object =
            std::span(buffer_).subspan(begin_ + kItemHeaderSize, pending_ - kItemHeaderSize);
    }
}

// What is wrong with the length in the header at begin_; null for nothing.
const char *ItemReader::fault_of_length(const Item &item) {
    if (!is_possible_length(item.length)) {
        return "the item's length is impossible";
    }
    const size_t whole = kItemHeaderSize + item.length;
    if (!has(whole)) {
        return "the file ends inside the item";
    }
    return is_followed(whole, item.row + 1) ? nullptr : "no item begins where this one ends";
}

// Makes everything up to the next item header pending, or passes over it where
// it is not to be kept or is longer than any item.
void ItemReader::pass_to_header(bool keep) {
    size_t place = kItemAlignment;
    while (has(place + kItemHeaderSize) &&
           !(is_header(place) && is_possible_length(length_at(buffer_.data() + begin_ + place)))) {
        place += kItemAlignment;
        if (!keep || place > kItemHeaderSize + kLongestObject) {
            begin_ += place;
            place = 0;
            keep = false;
        }
    }
    if (!has(place + kItemHeaderSize)) { // the rest of the file, which is in the window
        const uint64_t filled = base_ + end_;
        place = static_cast<size_t>((filled < valid_length_ ? filled : valid_length_) - position());
    }
    pending_ = keep ? place : 0;
    begin_ += keep ? 0 : place;
}

// Rows are numbered without a gap, but for what was lost.
void ItemReader::take_row_number(Item *item) {
    if (!item->has_header) {
        expected_row_ = kAnyRow;
        return;
    }
    const bool any = expected_row_ == kAnyRow;
    if (any ? item->row > last_row_ : item->row == expected_row_) {
        last_row_ = item->row;
        expected_row_ = item->row + 1;
        return;
    }
    if (item->damage.empty()) {
        item->damage = damaged("row number " + std::to_string(item->row) +
                               (any ? ", which is not above those before"
                                    : " where " + std::to_string(expected_row_) + " is due"));
    }
    if (!any) {
        last_row_ = expected_row_++;
    }
}

void ItemReader::finish() {
    if (finished_) {
        return;
    }
    finished_ = true;
    if (!ending_.empty() || valid_length_ == UINT64_MAX) {
        return;
    }
    if (position() < valid_length_) {
        ending_ = damaged("the file ends at " + std::to_string(position()) +
                          " where its header promises " + std::to_string(valid_length_) + " bytes");
        return;
    }
    valid_length_ = UINT64_MAX;
    while (has(1)) {
        rest_ += end_ - begin_;
        begin_ = end_;
    }
}

// ---- Writing ----------------------------------------------------------------

ItemWriter::ItemWriter() {
    b_buffInit(&out_, tag_);
}

ItemWriter::~ItemWriter() {
    if (name_ != nullptr) {
        abandon();
    }
    b_buffTerm(&out_);
}

Complaint ItemWriter::complain(OAK_RETCODE status) const {
    return std::string(name_) + ": " + status_text(status);
}

Complaint ItemWriter::open(const char *name) {
    const bool made = osl_fileValidate(name) == eNOFILE;
    Complaint complaint = file_.open(name, OSL_OPEN_CREATE);
    if (!complaint.empty()) {
        return complaint;
    }
    name_ = name;
    const OAK_RETCODE status = osl_fileLock(file_.handle());
    if (status != sOKAY) {
        complaint = complain(status);
    } else {
        complaint = examine();
        made_ = made && old_length_ == 0;
    }
    if (!complaint.empty()) {
        abandon();
    }
    return complaint;
}

// Reads the file to its end, so that nothing is appended to a damaged one.
Complaint ItemWriter::examine() {
    old_length_ = osl_fileLength(file_.handle());
    valid_length_ = kFileHeaderSize;
    if (old_length_ == 0) {
        is_new_ = true;
        return {};
    }
    ItemReader reader(item_source(file_.handle()));
    Complaint damage = reader.read_header();
    uint64_t place = 0;
    for (Item item; damage.empty() && reader.next(&item); next_row_ = item.row + 1) {
        place = item.place;
        valid_length_ = item.end;
        damage = item.damage;
    }
    damage = damage.empty() ? reader.ending() : damage;
    if (damage.empty()) {
        return {};
    }
    return std::string(name_) + ": at " + std::to_string(place) + ": " + damage;
}

OAK_BUFFER *ItemWriter::begin_item() {
    item_ = out_.len;
    const ItemBytes room{};
    const OAK_RETCODE status = b_buffEmitBytesBulk(&out_, room.data(), room.size());
    return status == sOKAY ? &out_ : nullptr;
}

Complaint ItemWriter::end_item() {
    const size_t length = out_.len - item_ - kItemHeaderSize;
    if (length > kLongestObject) {
        return complain(eBADDATALEN);
    }
    const ItemBytes header = item_header(static_cast<uint32_t>(length), next_row_++);
    std::memcpy(out_.data + item_, header.data(), header.size());
    object_bytes_ += length;
    return out_.len >= kFlushAt ? flush() : Complaint();
}

Complaint ItemWriter::write_header(uint64_t valid_length) {
    const ItemBytes header = file_header(valid_length);
    const bool written =
        osl_fileSeekWrite(file_.handle(), 0, header.data(), header.size()) == header.size();
    return written ? Complaint() : complain(eBADWRITE);
}

// A new file gets a header that makes it an empty item file before anything else,
// and behind the valid part nobody reads.
Complaint ItemWriter::flush() {
    if (is_new_ && !touched_) {
        touched_ = true;
        if (Complaint complaint = write_header(kFileHeaderSize); !complaint.empty()) {
            return complaint;
        }
    }
    touched_ = true;
    const uint32_t length = static_cast<uint32_t>(out_.len);
    if (osl_fileSeekWrite(file_.handle(), valid_length_ + written_length_, out_.data, length) !=
        length) {
        return complain(eBADWRITE);
    }
    written_length_ += length;
    b_buffReset(&out_);
    return {};
}

// The file grows in one step, when its header is written.
Complaint ItemWriter::commit() {
    Complaint complaint = flush();
    const uint64_t length = file_length();
    if (complaint.empty() && old_length_ > length &&
        osl_fileSetSize(file_.handle(), length) != sOKAY) {
        complaint = complain(eFILEIO);
    }
    if (complaint.empty()) {
        complaint = write_header(length);
    }
    if (!complaint.empty()) {
        abandon();
        return complaint;
    }
    file_.close();
    name_ = nullptr;
    return {};
}

// Makes the file what it was, as far as the system still lets it; the header that
// tells how far it is valid comes first.
void ItemWriter::abandon() {
    if (touched_ && !is_new_) {
        static_cast<void>(write_header(valid_length_));
    }
    if (touched_) {
        OAK_IGNORE_STATUS(osl_fileSetSize(file_.handle(), old_length_),
                          "nobody reads behind the valid part");
    }
    if (made_) {
        OAK_IGNORE_STATUS(osl_fileRemove(name_), "an item file without items does no harm");
    }
    file_.close();
    name_ = nullptr;
}

} // namespace tools
