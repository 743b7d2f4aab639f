#pragma once

struct sqlite3;

namespace mox::core {

/// Gives an open SQLite line the functions that statements in MariaDB's dialect use: date (of one
/// value), year, month, day, quarter, curdate, now, if, concat, like, and
/// ambiente_buscadadostringconfiguracao, which reads the table ambiente_configuracoes(modulo,
/// chave, id_unidade, valor). Today is that of the application's clock. Throws moxError when SQLite
/// refuses one.
void registerSqliteFunctions(sqlite3* line);

}  // namespace mox::core
