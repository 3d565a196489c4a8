#include "pmd/section_payload.h"

#include <zlib.h>

#include <cstdlib>
#include <cstring>

std::optional<krd_image_info> krd_read_image_info(krd_file* f, const krd_section* node) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    if (krd_read_tag(f, &len) != HDR_MBL) return std::nullopt;
    krd_seek(f, len, 1);
    if (krd_read_tag(f, &len) != HDR_MHD) return std::nullopt;
    krd_image_info info;
    info.address = krd_read_word(f);
    info.size = krd_read_word(f);
    if (krd_read_tag(f, &len) != HDR_FORM) return std::nullopt;
    if (krd_read_tag(f, &len) != HDR_ZDAT) return std::nullopt;
    krd_seek(f, 20, 1);
    info.packed_size = krd_read_word(f);
    krd_seek(f, 4, 1);
    if (krd_read_tag(f, &len) != HDR_DATA) return std::nullopt;
    info.data_offset = f->pos;
    return info;
}

uint64_t krd_max_inflated(uint64_t packed) { return packed * 1032 + 1032; }

bool krd_image_plausible(const krd_file* f, const krd_image_info& img) {
    uint64_t avail = krd_bytes_after(f, img.data_offset);
    if (avail > img.packed_size) avail = img.packed_size;
    return img.size <= krd_max_inflated(avail);
}

static void* zalloc_cb(void*, unsigned items, unsigned size) { return std::calloc(items, size); }
static void zfree_cb(void*, void* p) { free_buf(&p); }

// A stream that writes the image's size bytes to dest, the file standing on
// its first compressed byte.
static bool start_inflate(z_stream& zs, krd_file* f, const krd_image_info& img, uint8_t* dest) {
    zs = z_stream{};
    zs.zalloc = zalloc_cb;
    zs.zfree = zfree_cb;
    krd_seek(f, img.data_offset, 0);
    zs.next_out = dest;
    zs.avail_out = img.size;
    return inflateInit(&zs) == Z_OK;
}

// The reference loop: one compressed byte per inflate call.
static int inflate_bytewise(krd_file* f, const krd_image_info& img, uint8_t* dest) {
    z_stream zs;
    if (!start_inflate(zs, f, img, dest)) return 1;
    int result = 0;
    while (zs.total_out < img.size && zs.total_in < img.packed_size) {
        uint8_t b = krd_get_byte(f);
        zs.next_in = &b;
        zs.avail_in = 1;
        int r = inflate(&zs, Z_NO_FLUSH);
        if (r == Z_STREAM_END) break;
        if (r != Z_OK) {
            result = 1;
            break;
        }
    }
    inflateEnd(&zs);
    return result;
}

// Inflation in large pieces. It stops where the byte loop stops when the
// stream ends or the output is full; only its error reports can come earlier
// (it may decode a bad code behind the last output byte that the byte loop
// never fed), so on an error the byte loop decides.
int krd_inflate_image(krd_file* f, const krd_section* node, uint8_t* dest) {
    if (!node->image) return 1;
    const krd_image_info img = *node->image;
    if (krd_get_byte != krd_read_byte) return inflate_bytewise(f, img, dest);

    z_stream zs;
    if (!start_inflate(zs, f, img, dest)) return 1;
    constexpr uint32_t piece = 1u << 16;
    static uint8_t in[piece];
    bool failed = false;
    while (zs.total_out < img.size && zs.total_in < img.packed_size) {
        uint32_t want = img.packed_size - uint32_t(zs.total_in);
        if (want > piece) want = piece;
        krd_read_bytes(f, in, want);
        zs.next_in = in;
        zs.avail_in = want;
        int r = inflate(&zs, Z_NO_FLUSH);
        if (r == Z_STREAM_END) break;
        if (r != Z_OK) {
            failed = true;
            break;
        }
        // Input the stream did not take is offered again next round.
        uint32_t left = zs.avail_in;
        if (left) krd_seek(f, uint32_t(-left), 1);
    }
    inflateEnd(&zs);
    if (!failed) return 0;
    std::memset(dest, 0, img.size);
    return inflate_bytewise(f, img, dest);
}

std::unique_ptr<krd_errinfo> krd_read_errinfo(krd_file* f, krd_section* node) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    uint32_t tag = krd_read_tag(f, &len);
    if (tag != HDR_ERBL && tag != HDR_MBL) return nullptr;
    auto info = std::make_unique<krd_errinfo>();
    if (tag == HDR_ERBL) {
        info->user_called = krd_read_word(f);
        info->error_code = krd_read_word(f);
        info->extra = krd_read_word(f);
        info->curr_proc = krd_read_word(f);
        return info;
    }
    node->image = krd_read_image_info(f, node);
    if (!node->image || node->image->size >= 65505) return nullptr;
    uint32_t size = node->image->size;
    std::vector<char> text(size_t(size) + 1, '\0');
    if (krd_inflate_image(f, node, reinterpret_cast<uint8_t*>(text.data())) != 0) return nullptr;
    // Three numbers, blank separated; the text ends at its size.
    const char* p = text.data();
    uint32_t* fields[3] = {&info->user_called, &info->error_code, &info->extra};
    for (uint32_t* field : fields) {
        while (*p == ' ') p++;
        char* end = nullptr;
        *field = uint32_t(std::strtoul(p, &end, 0));
        p = end;
    }
    info->curr_proc = 0xFFFFFFFF;
    return info;
}

std::unique_ptr<krd_sigdef> krd_read_sigdef_info(krd_file* f, krd_section* node) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    if (krd_read_tag(f, &len) != HDR_SGBL) return nullptr;
    auto sig = std::make_unique<krd_sigdef>();
    sig->signo = krd_read_word(f);
    sig->word = krd_read_word(f);
    sig->size = krd_read_word(f);
    uint32_t tag = krd_read_tag(f, &len);
    if (tag == HDR_DATA) {
        // The raw data cannot be longer than what the file still holds.
        if (len > krd_bytes_after(f, f->pos)) return nullptr;
        sig->data.resize(len);
        krd_read_bytes(f, sig->data.data(), len);
        sig->has_data = true;
    } else if (tag == HDR_FORM) {
        if (krd_read_tag(f, &len) != HDR_ZDAT) return nullptr;
        krd_seek(f, 20, 1);
        krd_image_info img;
        img.packed_size = krd_read_word(f);
        krd_seek(f, 4, 1);
        if (krd_read_tag(f, &len) != HDR_DATA) return nullptr;
        img.address = 0;
        img.size = sig->size;
        img.data_offset = f->pos;
        node->image = img;
        if (!krd_image_plausible(f, img)) return nullptr;
        sig->data.assign(img.size, 0);
        krd_inflate_image(f, node, sig->data.data());
        sig->has_data = true;
    }
    return sig;
}

uint32_t krd_init_reginfo(krd_file* f, const krd_section* node, uint32_t* position) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    if (krd_read_tag(f, &len) != HDR_RBL) return 0;
    krd_seek(f, len, 1);
    uint32_t count = node->size - len - 56;
    if (krd_read_tag(f, &len) != HDR_ARCH) return 0;
    krd_seek(f, len, 1);
    count -= len + 8;
    *position = f->pos;
    return count;
}

std::unique_ptr<krd_reg_entry> krd_get_reginfo(krd_file* f, uint32_t* position) {
    uint32_t len = 0;
    krd_seek(f, *position, 0);
    if (krd_read_tag(f, &len) != HDR_RENT) return nullptr;
    // An entry too short for its value, or longer than the file, cannot be read.
    if (len < 5 || len > krd_bytes_after(f, f->pos)) return nullptr;
    auto e = std::make_unique<krd_reg_entry>();
    krd_seek(f, 1, 1);
    e->value = krd_read_word(f);
    uint32_t n = len - 5;
    uint64_t avail = krd_bytes_after(f, f->pos);
    uint32_t take = n < avail ? n : uint32_t(avail);
    e->name.assign(take, '\0');
    krd_read_bytes(f, reinterpret_cast<uint8_t*>(e->name.data()), take);
    krd_seek(f, n - take, 1);
    e->name.resize(std::strlen(e->name.c_str()));
    *position = f->pos;
    return e;
}

uint32_t krd_init_proginfo(krd_file* f, const krd_section* node, uint32_t* position) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    if (krd_read_tag(f, &len) != HDR_PRBL) return 0;
    krd_seek(f, 4, 1);
    *position = f->pos;
    return len - 4;
}

std::unique_ptr<krd_prog_info> krd_get_proginfo(krd_file* f, uint32_t* position) {
    uint32_t len = 0;
    krd_seek(f, *position, 0);
    if (krd_read_tag(f, &len) != HDR_FORM) return nullptr;
    if (krd_read_tag(f, &len) != HDR_PROG_PRHD) return nullptr;
    uint32_t hdr[4];
    for (uint32_t& w : hdr) w = krd_read_word(f);
    if (krd_read_tag(f, &len) != HDR_PREG) return nullptr;
    uint32_t words = len / 4;
    // The region table cannot hold more words than the file has left.
    if (uint64_t(words) * 4 > krd_bytes_after(f, f->pos)) return nullptr;
    auto p = std::make_unique<krd_prog_info>();
    p->zzmain_pid = hdr[0];
    p->resident = hdr[2];
    p->status = hdr[3];
    p->region_count = words;
    p->regions.resize(words);
    for (uint32_t& w : p->regions) w = krd_read_word(f);
    krd_seek(f, len - words * 4, 1);
    if (krd_read_tag(f, &len) != HDR_LMID) return nullptr;
    uint32_t n = len < 64 ? len : 64;
    krd_read_bytes(f, reinterpret_cast<uint8_t*>(p->lmid), n);
    p->lmid[62] = '>';
    p->lmid[63] = '\0';
    *position = f->pos;
    return p;
}

uint32_t krd_init_text(krd_file* f, const krd_section* node) {
    uint32_t len = 0;
    krd_seek(f, node->offset, 0);
    if (krd_read_tag(f, &len) != HDR_TXBL) return 0;
    uint32_t skip = uint32_t(node->title.size()) + 1;
    if (len < skip) return 0;
    krd_seek(f, skip, 1);
    return len - skip;
}

krd_payload_status krd_read_chain_payload(krd_file* f, krd_section* chain, krd_payload* out) {
    uint64_t total = 0;
    bool too_big = false;
    for (krd_section* n = chain; n; n = n->next.get()) {
        n->image = krd_read_image_info(f, n);
        if (!n->image) return KRD_PAYLOAD_CORRUPT;
        total += n->image->size;
        if (!krd_image_plausible(f, *n->image)) too_big = true;
    }
    if (total == 0) return KRD_PAYLOAD_EMPTY;
    if (too_big || total > 0xFFFFFFFFu) return KRD_PAYLOAD_CORRUPT;
    auto* mem = static_cast<uint8_t*>(z_alloc(size_t(total), 0));
    if (!mem) return KRD_PAYLOAD_CORRUPT;
    std::memset(mem, 0, size_t(total));
    out->bytes.reset(mem);
    out->size = uint32_t(total);
    bool failed = false;
    uint64_t at = 0;
    for (krd_section* n = chain; n; n = n->next.get()) {
        if (krd_inflate_image(f, n, mem + at) != 0) failed = true;
        at += n->image->size;
    }
    return failed ? KRD_PAYLOAD_INFLATE : KRD_PAYLOAD_OK;
}
