#include "escola/generator/words.h"

#include <array>

namespace escola {

namespace {

constexpr auto kFemaleNames = std::to_array<std::string_view>(
    {"Alícia",         "Amanda",    "Ana Beatriz", "Ana Cecília", "Ana Clara",   "Ana Júlia",
     "Ana Luísa",      "Antônia",   "Aparecida",   "Bárbara",     "Beatriz",     "Bianca",
     "Bruna",          "Camila",    "Carolina",    "Catarina",    "Cecília",     "Clarice",
     "Débora",         "Eduarda",   "Elisângela",  "Emanuelly",   "Fabíola",     "Fernanda",
     "Flávia",         "Francisca", "Gabriela",    "Giovanna",    "Heloísa",     "Iara",
     "Inês",           "Isabela",   "Jéssica",     "Júlia",       "Juliana",     "Laís",
     "Larissa",        "Letícia",   "Lívia",       "Lorena",      "Luana",       "Luíza",
     "Maitê",          "Manuela",   "Márcia",      "Maria Alice", "Maria Clara", "Maria Eduarda",
     "Maria Fernanda", "Mariana",   "Marília",     "Natália",     "Nicole",      "Patrícia",
     "Rafaela",        "Raíssa",    "Rebeca",      "Sabrina",     "Sofia",       "Stéfany",
     "Tainá",          "Thaís",     "Valentina",   "Verônica",    "Vitória",     "Yasmin"});

constexpr auto kMaleNames = std::to_array<std::string_view>(
    {"Adriano",     "Alexandre",     "André",          "Antônio",
     "Arthur",      "Augusto",       "Benício",        "Bernardo",
     "Bruno",       "Caetano",       "Caio",           "Carlos Eduardo",
     "César",       "Daniel",        "Davi Lucas",     "Diego",
     "Edílson",     "Eduardo",       "Emanuel",        "Enzo Gabriel",
     "Fábio",       "Felipe",        "Fernando",       "Flávio",
     "Francisco",   "Gabriel",       "Guilherme",      "Gustavo",
     "Heitor",      "Henrique",      "Hugo",           "Ícaro",
     "Igor",        "João Gabriel",  "João Pedro",     "João Vítor",
     "Joaquim",     "José",          "José Carlos",    "Júlio César",
     "Kauã",        "Leonardo",      "Lorenzo",        "Lucas",
     "Luís Felipe", "Luiz Henrique", "Marcelo",        "Márcio",
     "Matheus",     "Miguel",        "Murilo",         "Nícolas",
     "Otávio",      "Paulo",         "Pedro Henrique", "Rafael",
     "Raí",         "Renan",         "Rogério",        "Samuel",
     "Sebastião",   "Sérgio",        "Thiago",         "Vinícius",
     "Vítor Hugo",  "Wesley"});

constexpr auto kSurnames = std::to_array<std::string_view>(
    {"Abreu",       "Aguiar",        "Albuquerque",  "Almeida",    "Alves",      "Amorim",
     "Andrade",     "Antunes",       "Aragão",       "Araújo",     "Assis",      "Assunção",
     "Azevedo",     "Barbosa",       "Barros",       "Batista",    "Bezerra",    "Borges",
     "Braga",       "Brandão",       "Brito",        "Calixto",    "Câmara",     "Campos",
     "Cardoso",     "Carvalho",      "Castro",       "Cavalcanti", "Conceição",  "Corrêa",
     "Costa",       "Coutinho",      "Cunha",        "Damasceno",  "Dias",       "Diniz",
     "Duarte",      "Esteves",       "Falcão",       "Farias",     "Fernandes",  "Ferraz",
     "Ferreira",    "Figueiredo",    "Fonseca",      "Franco",     "Freitas",    "Furtado",
     "Galvão",      "Gomes",         "Gonçalves",    "Gouveia",    "Guimarães",  "Lacerda",
     "Leão",        "Lima",          "Lopes",        "Macêdo",     "Machado",    "Magalhães",
     "Maia",        "Marinho",       "Marques",      "Martins",    "Medeiros",   "Melo",
     "Mendes",      "Mendonça",      "Monteiro",     "Moraes",     "Moreira",    "Moura",
     "Nascimento",  "Negrão",        "Neves",        "Nóbrega",    "Nogueira",   "Nunes",
     "Oliveira",    "Pacheco",       "Paixão",       "Peçanha",    "Pereira",    "Pinto",
     "Queiroz",     "Ramos",         "Rezende",      "Ribeiro",    "Rocha",      "Rodrigues",
     "Sá",          "Salomão",       "Sampaio",      "Santana",    "Santos",     "Silva",
     "Siqueira",    "Soares",        "Sousa",        "Tavares",    "Teixeira",   "Toledo",
     "Valença",     "Vasconcelos",   "Vieira",       "Xavier",     "da Silva",   "dos Santos",
     "de Oliveira", "do Nascimento", "da Conceição", "da Paixão",  "de Almeida", "de Jesus",
     "dos Anjos",   "da Cunha",      "da Rocha",     "da Costa",   "de Lima",    "de Araújo",
     "do Amaral",   "de Souza"});

constexpr auto kStreets =
    std::to_array<std::string_view>({"Rua das Acácias",        "Rua dos Ipês",
                                     "Avenida Beira-Rio",      "Rua São João",
                                     "Rua Sete de Setembro",   "Travessa da Estação",
                                     "Rua Coronel Assunção",   "Avenida Brasil",
                                     "Rua Padre Anchieta",     "Rua da Conceição",
                                     "Alameda dos Jacarandás", "Rua Quinze de Novembro",
                                     "Avenida Independência",  "Rua José de Alencar",
                                     "Rua Cecília Meireles",   "Rua do Sol",
                                     "Rua Três Corações",      "Praça da Matriz",
                                     "Rua Tiradentes",         "Rua Vila-Lobos",
                                     "Rua das Mangueiras",     "Avenida das Nações",
                                     "Rua Getúlio Vargas",     "Rua Olavo Bilac"});

constexpr auto kDistricts = std::to_array<std::string_view>(
    {"Centro", "Boa Vista", "Jardim América", "Vila São José", "Santo Antônio", "Bela Vista",
     "Conjunto Esperança", "Parque das Águas", "São Cristóvão", "Jardim Primavera",
     "Alto da Colina", "Nossa Senhora de Fátima", "Vila Nova", "Cidade Universitária", "Água Verde",
     "Estação Velha"});

constexpr auto kProfessions = std::to_array<std::string_view>({"comerciante",
                                                               "motorista",
                                                               "dentista",
                                                               "eletricista",
                                                               "jornalista",
                                                               "policial militar",
                                                               "agente de saúde",
                                                               "gerente de loja",
                                                               "analista contábil",
                                                               "auxiliar de cozinha",
                                                               "agente de trânsito",
                                                               "docente",
                                                               "feirante",
                                                               "representante comercial",
                                                               "analista de crédito",
                                                               "assistente jurídico",
                                                               "cuidador de idosos",
                                                               "taxista",
                                                               "vigilante",
                                                               "pensionista"});

constexpr auto kStudentRemarks = std::to_array<std::string_view>(
    {"", "", "", "", "", "", "Alergia a amendoim.", "Usa óculos; sentar nas primeiras fileiras.",
     "Avó autorizada a buscar: Dona Conceição.", "Transporte escolar, linha 3.",
     "Participa da olimpíada de matemática.", "Dislexia; prova com tempo adicional.",
     "Intolerância à lactose.", "Irmão na mesma escola.",
     "Documentação pendente: histórico escolar.", "Atleta da seleção de vôlei."});

}  // namespace

std::span<std::string_view const> femaleNames() {
  return kFemaleNames;
}

std::span<std::string_view const> maleNames() {
  return kMaleNames;
}

std::span<std::string_view const> surnames() {
  return kSurnames;
}

std::span<std::string_view const> streets() {
  return kStreets;
}

std::span<std::string_view const> districts() {
  return kDistricts;
}

std::span<std::string_view const> professions() {
  return kProfessions;
}

std::span<std::string_view const> studentRemarks() {
  return kStudentRemarks;
}

}  // namespace escola
