#include "escola/generator/catalog.h"

#include <array>

namespace escola {

namespace {

constexpr auto kUnits = std::to_array<Unit>({
    {1, 1, "Colégio Jacarandá – Matriz", "Recife", "PE", "81", "50000", 22, 110},
    {2, 1, "Colégio Jacarandá – Olinda", "Olinda", "PE", "81", "53000", 16, 100},
    {3, 1, "Colégio Jacarandá – João Pessoa", "João Pessoa", "PB", "83", "58000", 18, 95},
    {4, 1, "Colégio Jacarandá – Maceió", "Maceió", "AL", "82", "57000", 12, 92},
    {5, 1, "Colégio Jacarandá – Petrolina", "Petrolina", "PE", "87", "56300", 8, 88},
    {6, 6, "Instituto Pedra Branca – Sede", "Florianópolis", "SC", "48", "88000", 14, 120},
    {7, 6, "Instituto Pedra Branca – São José", "São José", "SC", "48", "88100", 10, 105},
});

constexpr auto kSubjects = std::to_array<Subject>({
    {1, "POR", "Língua Portuguesa", Field::kLanguages, 5, 0},
    {2, "MAT", "Matemática", Field::kMathematics, 5, 0},
    {3, "HIS", "História", Field::kHumanities, 3, 0},
    {4, "GEO", "Geografia", Field::kHumanities, 3, 0},
    {5, "CIE", "Ciências", Field::kNature, 4, 0},
    {6, "ING", "Língua Inglesa", Field::kLanguages, 2, 0},
    {7, "ART", "Arte", Field::kBodyAndArts, 2, 0},
    {8, "EDF", "Educação Física", Field::kBodyAndArts, 2, 0},
    {9, "FIS", "Física", Field::kNature, 3, 0},
    {10, "QUI", "Química", Field::kNature, 3, 0},
    {11, "BIO", "Biologia", Field::kNature, 3, 0},
    {12, "FIL", "Filosofia", Field::kHumanities, 1, 0},
    {13, "SOC", "Sociologia", Field::kHumanities, 1, 0},
    {14, "LIT", "Literatura", Field::kLanguages, 2, 0},
    {15, "LOG", "Lógica de Programação", Field::kTechnical, 5, 0},
    {16, "BDA", "Banco de Dados", Field::kTechnical, 4, 0},
    {17, "RDC", "Redes de Computadores", Field::kTechnical, 4, 0},
    {18, "WEB", "Desenvolvimento para a Web", Field::kTechnical, 4, 0},
    {19, "MSO", "Manejo do Solo", Field::kTechnical, 4, 0},
    {20, "ZOO", "Zootecnia", Field::kTechnical, 4, 0},
    {21, "AGE", "Agroecologia", Field::kTechnical, 3, 0},
    {22, "TOP", "Topografia", Field::kTechnical, 3, 0},
    {23, "RED", "Redação", Field::kLanguages, 2, 0},
    {24, "LIB", "Libras", Field::kLanguages, 1, 2},
    {25, "ROB", "Robótica", Field::kTechnical, 2, 3},
    {26, "XAD", "Xadrez", Field::kMathematics, 1, 5},
    {27, "ESP", "Língua Espanhola", Field::kLanguages, 2, 7},
});

constexpr std::array kMiddleSchool{1, 2, 3, 4, 5, 6, 7, 8};
constexpr std::array kHighSchool{1, 2, 3, 4, 6, 8, 9, 10, 11, 12, 13, 14};
constexpr std::array kComputing{1, 2, 6, 15, 16, 17, 18};
constexpr std::array kFarming{1, 2, 11, 19, 20, 21, 22};
constexpr std::array kCramming{1, 2, 3, 4, 9, 10, 11, 23};

constexpr std::array<std::string_view, 2> kByDay{"matutino", "vespertino"};
constexpr std::array<std::string_view, 1> kMornings{"matutino"};
constexpr std::array<std::string_view, 1> kEvenings{"noturno"};
constexpr std::array<std::string_view, 2> kAfternoonsAndEvenings{"vespertino", "noturno"};

constexpr auto kCourses = std::to_array<Course>({
    {1,
     1,
     "Ensino Fundamental – Anos Finais",
     "fundamental",
     "ano",
     4,
     6,
     11,
     36,
     {89000},
     kMiddleSchool,
     kByDay},
    {2, 1, "Ensino Médio", "médio", "EM", 3, 1, 15, 30, {112000}, kHighSchool, kByDay},
    {3,
     1,
     "Técnico em Informática",
     "técnico",
     "INF",
     2,
     1,
     17,
     20,
     {64000},
     kComputing,
     kAfternoonsAndEvenings},
    {4,
     6,
     "Ensino Fundamental – Anos Finais",
     "fundamental",
     "ano",
     4,
     6,
     11,
     34,
     {98000},
     kMiddleSchool,
     kByDay},
    {5, 6, "Ensino Médio", "médio", "EM", 3, 1, 15, 30, {125000}, kHighSchool, kMornings},
    {6, 6, "Técnico em Agropecuária", "técnico", "AGR", 2, 1, 17, 20, {59000}, kFarming, kEvenings},
    {7,
     0,
     "Pré-vestibular",
     "livre",
     "PRÉ",
     1,
     1,
     18,
     14,
     {48000},
     kCramming,
     kAfternoonsAndEvenings},
});

// Salt and hash of the password "escola-demo" for each user who may log in; the limits are low, as
// befits a demonstration.
constexpr auto kPasswordHashes = std::to_array<std::string_view>({
    "MgvxBIdf6vq3vDycZHe9ug$rmBty5euZlJ1g8Bg9s/HpUznBB/ALtrruSvnSxCYPj8",
    "mOVINghp/BlB90r9gJKPGA$pHahM0paMobyMpSCNlR3z2MIUcv9KWkKm8GKN+Ebx+E",
    "ySgcoxUUljjml36YiVqnQg$kckkmsfW1hejKpPScBTEHuOFOEu4RSIGWWj7TMDI6uE",
    "opwbqTIV5qA6LrpWOdZCQA$e/XMSr1ILKI5f9Fp4qHff/g5b2qRYnMQuMlf3UT363U",
    "34WzjKlxva5H9a/jwZOjUg$+swqeMFh9aEs15v6DAhHuSsiSahW2GwOAbD2qUJLmNI",
    "F+cy+ZBY8yW+i3T1K9jBKg$DNXJ8A7iTPaaV+BhUHw54xnLibDLPF356ET6AKDl/o8",
    "/CWLH9RdXVmbbp6b6O5C9g$dXm3oBz+uK9ZJnhRsMeJc0OdJ3JlXVtFuxQJe0d6J4o",
});

std::string passwordHash(std::size_t place) {
  return "$argon2id$v=19$m=8192,t=2,p=1$" + std::string(kPasswordHashes[place]);
}

std::vector<User> makeUsers() {
  return {
      {1,
       "rosangela",
       "Rosângela Queiroz Falcão",
       passwordHash(0),
       1,
       true,
       false,
       true,
       {1, 2, 3, 4, 5},
       {}},
      {2, "joaquim", "Joaquim Araújo de Assunção", passwordHash(1), 3, true, false, true, {3}, {}},
      {3, "marilia", "Marília Gonçalves", passwordHash(2), 3, true, false, true, {3, 4}, {"ZYNC"}},
      {4,
       "admin",
       "Administração do Sistema",
       passwordHash(3),
       1,
       false,
       false,
       true,
       {1, 2, 3, 4, 5, 6, 7},
       {}},
      {5, "lucas", "Lucas Conceição de Sá", passwordHash(4), 2, true, true, true, {2}, {}},
      {6, "otavio", "Otávio Nóbrega", passwordHash(5), 1, true, false, true, {1}, {"OUTRA"}},
      {7, "iara", "Iara Bianchini Corrêa", passwordHash(6), 6, true, false, true, {6, 7}, {}},
      {8, "sebastiao", "Sebastião Valença", "", 4, true, false, false, {4}, {}},
      {9, "visitante", "Visitante sem Unidade", "", 0, true, false, true, {}, {}},
  };
}

}  // namespace

std::span<Unit const> units() {
  return kUnits;
}

std::span<Subject const> subjects() {
  return kSubjects;
}

std::span<Course const> courses() {
  return kCourses;
}

std::span<User const> users() {
  static std::vector<User> const users = makeUsers();
  return users;
}

std::string_view fieldName(Field field) {
  static constexpr std::array<std::string_view, kFieldCount> kNames{
      "linguagens", "matemática", "natureza", "humanas", "técnica", "corpo e artes"};
  return kNames[static_cast<std::size_t>(field)];
}

std::string unitToken(int unit) {
  return unit == 0 ? "[REDE]" : "[U" + std::to_string(unit) + "]";
}

}  // namespace escola
