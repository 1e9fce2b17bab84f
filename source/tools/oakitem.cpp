// oakitem: shows the stored objects of an item file one after another, with a
// catalog taken apart to the last byte. What is damaged is told where it stands,
// and the next object is shown.
#include "catalog_file.h"
#include "item_file.h"
#include "json_writer.h"
#include "row_dump.h"
#include "row_reader.h"

namespace tools {
namespace {

constexpr char kTool[] = "oakitem";
constexpr size_t kBytesPerLine = 16;
constexpr size_t kHexWidth = 3 * kBytesPerLine + 1;

constexpr OAK_CMDLINE_OPT_A kOptions[] = {
    {"c", "catalog", "s=FILE", "The catalog with the table, to show rows field by field"},
    {"t", "table", "s=NAME", "The table whose rows these are"},
    {"j", "json", nullptr, "Print one JSON object for programs"},
    {"ITEMS", nullptr, "#=ITEMS", "The item file; - for standard input"},
    {nullptr, nullptr, nullptr, nullptr},
};

constexpr char kDescription[] =
    "Shows the objects of an item file: place, row number, header, item format, method and\n"
    "lengths; with a catalog every field with its bytes in the packed object. The file is\n"
    "only read. The exit status is 1 when anything in it is damaged.";

// ---- Words ------------------------------------------------------------------

const char *method_name(uint32_t header) {
    switch (header & 15) {
        case OAK_COMPRESS_NONE:
            return "none";
        case OAK_COMPRESS_LZMA:
            return "lzma";
        case OAK_COMPRESS_ZERO:
            return "zero";
        default:
            return nullptr;
    }
}

const char *format_name(uint32_t header) {
    return sch_get_item_format_string(static_cast<OAK_ITEM_FORMAT>(header & 240));
}

std::string or_unknown(const char *text) {
    return text != nullptr ? text : "unknown";
}

void append_hex_bytes(std::string *out, const uint8_t *bytes, size_t count) {
    static constexpr char kDigits[] = "0123456789abcdef";
    for (size_t i = 0; i < count; ++i) {
        *out += i > 0 ? " " : "";
        *out += kDigits[bytes[i] >> 4];
        *out += kDigits[bytes[i] & 15];
    }
}

bool all_zero(const uint8_t *bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (bytes[i] != 0) {
            return false;
        }
    }
    return true;
}

// ---- An object --------------------------------------------------------------

// What the outermost layer of an object tells.
struct Object {
    const Item *item;
    bool has_header = false;
    uint32_t header = 0; // the header's value
    size_t packed = 0;   // length of the packed object
    size_t padding = 0;  // how much of it may be padding
};

// How objects are shown.
class View {
  public:
    explicit View(Output *output) : output_(output) {}
    virtual ~View() = default;
    virtual void begin(const std::string &file) = 0;
    virtual void begin_item(const Item &item) = 0;
    virtual void object(const Object &object) = 0;
    virtual void part(const RowPart &part, const uint8_t *bytes) = 0;
    virtual void end_item(const Complaint &damage) = 0;
    virtual void end(const std::vector<Complaint> &damages, uint64_t rest, uint64_t items,
                     uint64_t damaged) = 0;

  protected:
    std::string &out() { return output_->text(); }
    void poll() { output_->poll(); }

  private:
    Output *output_;
};

class TextView : public View {
  public:
    using View::View;

    void begin(const std::string &) override {}
    void begin_item(const Item &item) override {
        out() += "item at " + std::to_string(item.place);
        out() += item.has_header ? ", row " + std::to_string(item.row) + ", object of " +
                                       counted(item.object.size(), "byte")
                                 : ", " + counted(item.end - item.place, "byte");
        out() += '\n';
    }
    void object(const Object &object) override {
        out() += "  header " + std::to_string(object.header) + ": " +
                 or_unknown(format_name(object.header)) + ", compression " +
                 or_unknown(method_name(object.header)) + "; packed object of " +
                 counted(object.packed, "byte") + "\n";
    }
    void part(const RowPart &part, const uint8_t *bytes) override {
        const size_t size = part.to - part.from;
        const size_t count = size < kBytesPerLine ? size : kBytesPerLine;
        line(part.from, bytes, count, text_of(part));
        show_more(part.from, bytes, count, size);
        poll();
    }
    void end_item(const Complaint &damage) override {
        if (!damage.empty()) {
            out() += "  damaged: " + damage + '\n';
        }
        out() += '\n';
        poll();
    }
    void end(const std::vector<Complaint> &damages, uint64_t rest, uint64_t items,
             uint64_t damaged) override {
        for (const Complaint &damage : damages) {
            out() += "damaged: " + damage + '\n';
        }
        if (rest > 0) {
            out() += counted(rest, "byte") + " behind the items, of an append that was cut "
                                             "short\n";
        }
        out() += counted(items, "item") + ", " + with_commas(damaged) + " damaged\n";
    }

  private:
    static std::string text_of(const RowPart &part) {
        std::string text = part.what;
        if (part.is_null) {
            return text + " has no value";
        }
        if (part.is_text) {
            std::string quoted;
            JsonWriter(&quoted).text(part.value);
            return text + " = " + quoted;
        }
        return part.value.empty() ? text : text + " = " + part.value;
    }
    void line(size_t place, const uint8_t *bytes, size_t count, const std::string &text) {
        std::string line = std::to_string(place);
        line.insert(0, line.size() < 8 ? 8 - line.size() : 0, ' ');
        line += "  ";
        const size_t start = line.size();
        append_hex_bytes(&line, bytes, count);
        if (!text.empty()) {
            line.resize(start + kHexWidth, ' ');
            line += text;
        }
        out() += line + '\n';
    }
    // The further lines of a long part; a run of zeros is one line.
    void show_more(size_t from, const uint8_t *bytes, size_t shown, size_t size) {
        while (shown < size) {
            const size_t left = size - shown;
            if (left > kBytesPerLine && all_zero(bytes + shown, left)) {
                line(from + shown, bytes + shown, 1, with_commas(left) + " zero bytes");
                return;
            }
            const size_t count = left < kBytesPerLine ? left : kBytesPerLine;
            line(from + shown, bytes + shown, count, "");
            shown += count;
            poll();
        }
    }
};

class JsonView : public View {
  public:
    explicit JsonView(Output *output) : View(output), json_(&output->text()) {}

    void begin(const std::string &file) override {
        json_.begin_object().member("file", file).key("items").begin_array();
    }
    void begin_item(const Item &item) override {
        json_.line().begin_object().member_number("place", item.place);
        json_.member_number("bytes", item.end - item.place).key("row");
        if (item.has_header) {
            json_.unsigned_number(item.row);
        } else {
            json_.null();
        }
        json_.member_number("object_bytes", item.object.size());
        has_object_ = has_parts_ = false;
    }
    void object(const Object &object) override {
        has_object_ = true;
        json_.member_number("header", object.header);
        json_.member("format", format_name(object.header));
        json_.member("compression", method_name(object.header));
        json_.member_number("packed_bytes", object.packed);
    }
    void part(const RowPart &part, const uint8_t *bytes) override {
        if (!has_parts_) {
            json_.key("parts").begin_array();
            has_parts_ = true;
        }
        std::string hex;
        append_hex(&hex, bytes, part.to - part.from);
        json_.line().begin_object();
        json_.member_number("from", part.from).member_number("to", part.to);
        json_.member(part.is_column ? "column" : "what", std::string_view(part.what));
        json_.key("value");
        if (part.is_null || (part.value.empty() && !part.is_text)) {
            json_.null();
        } else {
            json_.text(part.value);
        }
        json_.member("hex", std::string_view(hex).substr(2)).end_object();
        poll();
    }
    void end_item(const Complaint &damage) override {
        if (!has_object_) {
            json_.key("header").null().key("format").null().key("compression").null();
            json_.key("packed_bytes").null();
        }
        if (!has_parts_) {
            json_.key("parts").begin_array();
        }
        json_.end_array().key("damage");
        if (damage.empty()) {
            json_.null();
        } else {
            json_.text(damage);
        }
        json_.end_object();
        poll();
    }
    void end(const std::vector<Complaint> &damages, uint64_t rest, uint64_t items,
             uint64_t damaged) override {
        json_.line().end_array().key("file_damage").begin_array();
        for (const Complaint &damage : damages) {
            json_.text(damage);
        }
        json_.end_array().member_number("bytes_behind", rest);
        json_.member_number("count", items).member_number("damaged", damaged).end_object();
        out() += '\n';
    }

  private:
    JsonWriter json_;
    bool has_object_ = false;
    bool has_parts_ = false;
};

class NoView : public View {
  public:
    using View::View;
    void begin(const std::string &) override {}
    void begin_item(const Item &) override {}
    void object(const Object &) override {}
    void part(const RowPart &, const uint8_t *) override {}
    void end_item(const Complaint &) override {}
    void end(const std::vector<Complaint> &, uint64_t, uint64_t, uint64_t) override {}
};

// ---- The run ----------------------------------------------------------------

class Inspection {
  public:
    Inspection(SCH_TBL_INFO_C ti, View *view) : ti_(ti), view_(view) {}

    bool is_damaged() const { return damaged_ > 0 || !damages_.empty(); }

    void run(ItemReader *items) {
        Complaint damage = items->read_header();
        if (!damage.empty()) {
            damages_.push_back(damage);
        }
        uint64_t count = 0;
        Progress progress(kTool, "items");
        for (Item item; items->next(&item); ++count) {
            show_item(item);
            progress.step();
        }
        if (!items->ending().empty() && items->ending() != damage) {
            damages_.push_back(items->ending());
        }
        view_->end(damages_, items->rest(), count, damaged_);
    }

  private:
    void show_item(const Item &item) {
        view_->begin_item(item);
        Complaint damage = item.damage;
        if (!item.object.empty()) {
            const Complaint inside = show_object(item);
            damage += damage.empty() || inside.empty() ? "" : "; ";
            damage += inside;
        }
        damaged_ += damage.empty() ? 0 : 1;
        view_->end_item(damage);
    }
    Complaint show_object(const Item &item) {
        const OAK_RETCODE status = packed_.read(item.object);
        Object object = {&item, true, item.object[0], packed_.packed()->len, 0};
        // Only what is stored as it is keeps its padding.
        object.padding = (object.header & 15) == OAK_COMPRESS_NONE ? kItemAlignment - 1 : 0;
        view_->object(object);
        if (status != sOKAY) {
            return "the object: " + status_text(status);
        }
        if (ti_ == nullptr) {
            return {};
        }
        const uint8_t *bytes = packed_.packed()->data;
        return dump_row(packed_.packed(), packed_.format(), ti_, object.padding,
                        [&](const RowPart &part) { view_->part(part, bytes + part.from); });
    }

    SCH_TBL_INFO_C ti_;
    View *view_;
    PackedObject packed_;
    uint64_t damaged_ = 0;
    std::vector<Complaint> damages_; // of the file as a whole
};

Complaint inspect(const CommandLine &line, SCH_TBL_INFO_C ti, View *view, bool *damaged) {
    const char *name = line.value("ITEMS");
    File file;
    if (Complaint complaint = file.open(name, OSL_OPEN_READ); !complaint.empty()) {
        return complaint;
    }
    view->begin(shown_name(name));
    ItemReader items(item_source(file.handle()));
    Inspection inspection(ti, view);
    inspection.run(&items);
    *damaged = inspection.is_damaged();
    return {};
}

Complaint run(const CommandLine &line, bool *damaged) {
    CatalogFile catalog;
    SCH_TBL_INFO_C ti = nullptr;
    Complaint complaint;
    if (line.has("catalog")) {
        complaint = catalog.read(line.value("catalog"));
        if (complaint.empty()) {
            ti = catalog.table(line.value("table"), &complaint);
        }
    }
    if (!complaint.empty()) {
        return complaint;
    }
    Output output;
    TextView text(&output);
    JsonView json(&output);
    NoView none(&output);
    View *view = line.quiet()       ? static_cast<View *>(&none)
                 : line.has("json") ? static_cast<View *>(&json)
                                    : &text;
    complaint = inspect(line, ti, view, damaged);
    return complaint.empty() ? output.finish() : complaint;
}

int main_of(int argc, char **argv) {
    CommandLine line(argc, argv, kDescription, kOptions);
    if (!line.exit_now() && line.has("catalog") != line.has("table")) {
        line.refuse("The options '--catalog' and '--table' go together");
    }
    if (line.exit_now()) {
        return line.exit_status();
    }
    bool damaged = false;
    const Complaint complaint = run(line, &damaged);
    if (!complaint.empty()) {
        say(kTool, complaint);
    }
    return complaint.empty() && !damaged ? kSuccess : kFailure;
}

} // namespace
} // namespace tools

int main(int argc, char **argv) {
    return tools::main_of(argc, argv);
}
