// A host that knows the binary interface alone: C, and none of the library's headers. It loads the library that the
// command line names, drives it through tables of function pointers, and ends with 0 when all answers are right.
#include <dlfcn.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define REQUIRE(condition)                                                                                   \
    do                                                                                                       \
        if (!(condition)) {                                                                                  \
            fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);                          \
            exit(EXIT_FAILURE);                                                                              \
        }                                                                                                    \
    while (0)

// Records.

typedef struct {
    uint32_t data1;
    uint16_t data2, data3;
    uint8_t data4[8];
} Guid;
typedef struct {
    float x, y;
} Vector2;
typedef struct {
    float x, y, z;
} Vector3;
typedef struct {
    float red, green, blue;
} RGB;
typedef struct {
    float red, green, blue, alpha;
} RGBA;

typedef struct {
    Vector3 pointGlobal, normalGlobal, pointLocal, normalLocal;
    Vector2 uv;
    uint8_t hostDataA[112];
    Vector3 derivU, derivV;
    uint8_t hostDataB[12];
    uint32_t channelMask;
    void* instance;
} Sample;
_Static_assert(sizeof(Sample) == 216 && offsetof(Sample, derivU) == 168, "");

typedef struct {
    RGBA color;
    uint8_t between[212];
    Vector3 shadingNormal;
} Surface;
_Static_assert(sizeof(Surface) == 240 && offsetof(Surface, shadingNormal) == 228, "");

typedef struct {
    Vector2 redRange, greenRange, blueRange;
    int32_t mode;
    RGBA keyColor;
    void* subShader;
} KeyRecord;
_Static_assert(sizeof(KeyRecord) == 56 && offsetof(KeyRecord, subShader) == 48, "");

typedef struct {
    int32_t mode;
    uint8_t pattern[5][5];
    int32_t displaceBefore, displaceAfter;
    uint8_t roundAcross, roundAlong;
    float profileAcross, profileAlong;
    int32_t warpGap, weftGap, repeatU, repeatV, warpWidth[5], weftWidth[5];
    uint8_t mask, maskInvert;
    void *displaceBeforeShader, *displaceAfterShader, *gapShader, *warpShader[5], *weftShader[5];
    uint8_t alongUV, acrossUV;
} WeaveRecord;
_Static_assert(sizeof(WeaveRecord) == 224 && offsetof(WeaveRecord, acrossUV) == 217, "");

// Interfaces: an object starts with the pointer to its table. Whatever isn't called is a gap.

typedef void (*Gap)(void);
#define UNKNOWN_OPERATIONS                                                                                   \
    uint32_t (*QueryInterface)(void* self, const Guid* id, void** out);                                      \
    uint32_t (*AddRef)(void* self);                                                                          \
    uint32_t (*Release)(void* self)

typedef struct {
    UNKNOWN_OPERATIONS;
    uint32_t (*CreateInstance)(void* self, void* outer, const Guid* id, void** out);
} FactoryTable;
typedef struct {
    UNKNOWN_OPERATIONS;
    Gap gap3[4];
    void* (*GetExtensionDataBuffer)(void* self);
    uint32_t (*ExtensionDataChanged)(void* self);
    Gap gap9[8];
    uint32_t (*GetParamsBufferSize)(void* self);
} ExchangerTable;
_Static_assert(sizeof(ExchangerTable) == 18 * sizeof(Gap), "");
typedef struct {
    UNKNOWN_OPERATIONS;
    int32_t (*SameParameters)(void* self, void* other);
    uint32_t (*ReportNeeds)(void* self, uint16_t needs[2]);
    Gap gap5[1];
    int32_t (*GetOutputKinds)(void* self);
    Gap gap7[2];
    int32_t (*ShadeSurface)(void* self, Surface* result, Sample* in);
    float (*ShadeValue)(void* self, float* value, bool* fullArea, Sample* in);
    float (*ShadeColor)(void* self, RGBA* color, bool* fullArea, Sample* in);
    Gap gap12[4];
    float (*ShadeVector)(void* self, Vector3* vector, Sample* in);
    Gap gap17[8];
    int32_t (*ReservedMinusOne)(void* self, uint32_t a);
    Gap gap26[16];
    RGB (*GetWhite)(void* self);
    float (*GetUnitScale)(void* self);
    uint32_t (*ReservedNotImplementedF)(void* self, void* a);
} ShaderTable;
_Static_assert(sizeof(ShaderTable) == 45 * sizeof(Gap), "");
typedef struct {
    UNKNOWN_OPERATIONS;
    void (*GetShadingFlags)(void* self, uint16_t flags[2]);
    int32_t (*ShadeSurface)(void* self, Surface* result, Sample* in);
    float (*ShadeValue)(void* self, float* value, bool* fullArea, Sample* in);
    float (*ShadeColor)(void* self, RGBA* color, bool* fullArea, Sample* in);
    uint32_t (*GetOutputKinds)(void* self);
} WrapperTable;
typedef struct {
    UNKNOWN_OPERATIONS;
    void* (*AllocateObject)(void* self, uint32_t size);
    void (*FreeObject)(void* self, void* memory);
    void* (*AllocateBlock)(void* self, uint32_t size);
    void (*FreeBlock)(void* self, void* memory);
} MemoryTable;

typedef struct {
    const FactoryTable* table;
} Factory;
typedef struct {
    const ExchangerTable* table;
} Exchanger;
typedef struct {
    const ShaderTable* table;
} Shader;

#define COM_TAIL                                                                                             \
    {                                                                                                        \
        0xC0, 0, 0, 0, 0, 0, 0, 0x46                                                                         \
    }
#define FRAME_TAIL                                                                                           \
    {                                                                                                        \
        0x88, 0x5F, 0x04, 0x02, 0x1C, 0x00, 0x70, 0x02                                                       \
    }
static const Guid kFactoryFace = {1, 0, 0, COM_TAIL};
static const Guid kShaderFace = {0x06DD2161, 0x2ED7, 0x101C, FRAME_TAIL};
static const Guid kExchangerFace = {0xB295B680, 0x3A02, 0x101C, FRAME_TAIL};
static const Guid kWrapperFace
    = {0x88A44710, 0x1D12, 0x11D2, {0x8F, 0x38, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};
static const Guid kMemoryFace
    = {0x031DD1DB, 0x024E, 0x11D2, {0x8F, 0x2E, 0x00, 0x60, 0x97, 0x98, 0xE7, 0x7D}};
static const Guid kKey = {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}};
static const Guid kWeave = {0x608112FA, 0x2448, 0x4404, {0x8E, 0x96, 0x17, 0xA8, 0xC6, 0xB5, 0xE9, 0xF9}};
static const uint32_t kNoInterface = 0x80014002, kNotImplemented = 0x80014001;

static bool Same(const void* left, const void* right, size_t size) { return memcmp(left, right, size) == 0; }

// The host's memory service, which is also what it gives the library at first.

static int gLiveBlocks;

static uint32_t QueryMemory(void* self, const Guid* id, void** out)
{
    *out = Same(id, &kMemoryFace, sizeof *id) ? self : NULL;
    return *out != NULL ? 0 : kNoInterface;
}

static uint32_t One(void* self) { return (void)self, 1; }

static void* Allocate(void* self, uint32_t size)
{
    (void)self;
    ++gLiveBlocks;
    return malloc(size);
}

static void Free(void* self, void* memory)
{
    (void)self;
    gLiveBlocks -= memory != NULL;
    free(memory);
}

static const MemoryTable kMemoryTable = {QueryMemory, One, One, Allocate, Free, Allocate, Free};
static struct {
    const MemoryTable* table;
} gMemory = {&kMemoryTable};

// A plugged shader of one colour.

typedef struct {
    const WrapperTable* table;
    uint32_t count;
    RGBA color;
} Paint;

static uint32_t AddPaint(void* self) { return ++((Paint*)self)->count; }

static uint32_t ReleasePaint(void* self) { return --((Paint*)self)->count; }

static uint32_t QueryPaint(void* self, const Guid* id, void** out)
{
    *out = Same(id, &kWrapperFace, sizeof *id) ? self : NULL;
    return *out != NULL ? AddPaint(self), 0u : kNoInterface;
}

static float ShadePaint(void* self, RGBA* color, bool* fullArea, Sample* in)
{
    (void)in;
    *color = ((Paint*)self)->color;
    *fullArea = true;
    return 1;
}

static uint32_t PaintKinds(void* self) { return (void)self, 4; }

static const WrapperTable kPaintTable
    = {QueryPaint, AddPaint, ReleasePaint, NULL, NULL, NULL, ShadePaint, PaintKinds};

static Paint MakePaint(float red, float green, float blue)
{
    const Paint paint = {&kPaintTable, 1, {red, green, blue, 0.5f}};
    return paint;
}

/// The record's slot counts what it holds.
static void Plug(void** slot, Paint* paint)
{
    AddPaint(paint);
    *slot = paint;
}

// The library.

static uint32_t (*gInit)(void* utilities);
static uint32_t (*gCleanUp)(void);
static uint32_t (*gInitTranslator)(void);
static uint32_t (*gCleanUpTranslator)(void);
static uint32_t (*gClassObject)(const Guid* classID, const Guid* id, void** out);
static uint32_t (*gCanUnloadNow)(void);

static Shader* Make(const Guid* classID, size_t recordSize, Exchanger** exchanger)
{
    Factory* factory;
    Shader* shader;
    REQUIRE(gClassObject(classID, &kFactoryFace, (void**)&factory) == 0);
    REQUIRE(factory->table->CreateInstance(factory, NULL, &kShaderFace, (void**)&shader) == 0);
    REQUIRE(factory->table->Release(factory) == 0);
    REQUIRE(shader->table->QueryInterface(shader, &kExchangerFace, (void**)exchanger) == 0);
    REQUIRE((*exchanger)->table->GetParamsBufferSize(*exchanger) == recordSize);
    REQUIRE(gCanUnloadNow() == 1);
    return shader;
}

static void Destroy(Shader* shader, Exchanger* exchanger)
{
    REQUIRE(exchanger->table->Release(exchanger) == 1);
    REQUIRE(shader->table->Release(shader) == 0);
    REQUIRE(gCanUnloadNow() == 0 && gLiveBlocks == 0);
}

static RGBA ColorAt(Shader* shader, float u, float v)
{
    Sample in = {.uv = {u, v}};
    RGBA color = {0, 0, 0, 0.25f};
    bool fullArea;
    REQUIRE(shader->table->ShadeColor(shader, &color, &fullArea, &in) == 1);
    return color;
}

static void TestKey(void)
{
    Exchanger* exchanger;
    Shader* const shader = Make(&kKey, sizeof(KeyRecord), &exchanger);
    KeyRecord* const record = exchanger->table->GetExtensionDataBuffer(exchanger);
    const KeyRecord defaults
        = {{-1, 1}, {-1, 1}, {-1, 1}, 'K' << 24 | 'E' << 16 | 'Y' << 8 | 'M', {0, 1, 0, 0}, NULL};
    REQUIRE(
        Same(record, &defaults, offsetof(KeyRecord, keyColor) + sizeof(RGBA)) && record->subShader == NULL);

    Paint paint = MakePaint(0.5f, 0.25f, 0);
    Plug(&record->subShader, &paint);
    record->mode = 0;
    record->keyColor.red = 0.5f;
    record->greenRange.x = -75;
    REQUIRE(exchanger->table->ExtensionDataChanged(exchanger) == 0);
    REQUIRE(ColorAt(shader, 0, 0).green == 0.25f && ColorAt(shader, 0, 0).alpha == 0); // inside the box
    record->blueRange.x = 0.5f;
    REQUIRE(exchanger->table->ExtensionDataChanged(exchanger) == 0);
    REQUIRE(ColorAt(shader, 0, 0).red == 0.5f && ColorAt(shader, 0, 0).alpha == 1);

    uint16_t needs[2] = {0x8000, 7};
    REQUIRE(shader->table->ReportNeeds(shader, needs) == 0 && needs[0] == 0x8020 && needs[1] == 0);
    REQUIRE(shader->table->GetOutputKinds(shader) == 4 && shader->table->SameParameters(shader, shader) != 0);
    Sample in = {.normalLocal = {1, 2, 3}};
    Surface result;
    memset(&result, 0x5A, sizeof result);
    REQUIRE(shader->table->ShadeSurface(shader, &result, &in) == 0);
    REQUIRE(Same(&result.shadingNormal, &in.normalLocal, sizeof(Vector3)) && result.between[211] == 0x5A);
    REQUIRE(shader->table->ReservedMinusOne(shader, 0) == -1);
    REQUIRE(shader->table->GetWhite(shader).blue == 1 && shader->table->GetUnitScale(shader) == 1);
    REQUIRE(shader->table->ReservedNotImplementedF(shader, NULL) == kNotImplemented);
    Destroy(shader, exchanger);
    REQUIRE(paint.count == 1);
}

static void TestWeave(void)
{
    Exchanger* exchanger;
    Shader* const shader = Make(&kWeave, sizeof(WeaveRecord), &exchanger);
    WeaveRecord* const record = exchanger->table->GetExtensionDataBuffer(exchanger);
    REQUIRE(record->profileAlong == 1.5f && record->weftWidth[4] == 1 && record->pattern[4][3] == 1);

    // One thread of a kind, as wide as its gap: it lies from 0.25 to 0.75, the weft on top.
    Paint warp = MakePaint(1, 0, 0), weft = MakePaint(0, 1, 0), gap = MakePaint(0, 0, 1);
    record->mode = 0;
    Plug(&record->warpShader[0], &warp);
    Plug(&record->weftShader[0], &weft);
    Plug(&record->gapShader, &gap);
    record->acrossUV = 1;
    REQUIRE(exchanger->table->ExtensionDataChanged(exchanger) == 0);
    REQUIRE(ColorAt(shader, 0.5f, 0.125f).red == 1 && ColorAt(shader, 0.5f, 0.5f).green == 1);
    REQUIRE(ColorAt(shader, 0.125f, 0.875f).blue == 1);

    Sample in = {.uv = {0.125f, 0.375f}, .normalLocal = {0, 0, 3}};
    RGBA color;
    bool fullArea = false;
    shader->table->ShadeColor(shader, &color, &fullArea, &in);
    REQUIRE(in.uv.x == 0.25f && in.uv.y == 0.125f && fullArea); // across the weft, and along it
    in.uv.x = in.uv.y = 0.125f;
    Vector3 normal = {0, 0, 0};
    REQUIRE(shader->table->ShadeVector(shader, &normal, &in) == 1 && normal.z == 3);

    record->mask = 1;
    record->repeatV = 2;
    record->pattern[0][0] = 1;
    REQUIRE(exchanger->table->ExtensionDataChanged(exchanger) == 0);
    // Beside the warp, the weft covers the middle half of each of two tiles.
    REQUIRE(ColorAt(shader, 0.125f, 0.75f).red != ColorAt(shader, 0.125f, 0.5f).red);
    REQUIRE(ColorAt(shader, 0.125f, 0.75f).alpha == 0.25f); // a mask has no alpha
    Destroy(shader, exchanger);
    REQUIRE(warp.count == 1 && weft.count == 1 && gap.count == 1);
}

static void Find(void* library, const char* name, void* function)
{
    void* const address = dlsym(library, name);
    REQUIRE(address != NULL);
    memcpy(function, &address, sizeof address);
}

int main(int argc, char** argv)
{
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : NULL;
    REQUIRE(library != NULL);
    Find(library, "MCDllInit", &gInit);
    Find(library, "MCDllCleanUp", &gCleanUp);
    Find(library, "MCDllInitExceptionTranslator", &gInitTranslator);
    Find(library, "MCDllCleanUpExceptionTranslator", &gCleanUpTranslator);
    Find(library, "MCDllGetClassObject", &gClassObject);
    Find(library, "MCDllCanUnloadNow", &gCanUnloadNow);
    REQUIRE(gInit(&gMemory) == 0 && gCleanUpTranslator() == 0 && gInitTranslator() == 0);
    TestKey();
    TestWeave();
    REQUIRE(gCleanUp() == 0 && dlclose(library) == 0);
    return EXIT_SUCCESS;
}
