-- Made when the rows are in: building an index once costs less than keeping it up row by row.

create unique index ambiente_configuracoes_chave on ambiente_configuracoes (modulo, chave, id_unidade);
create index escola_eventos_data on escola_eventos (data);
create index escola_alunos_unidade on escola_alunos (id_unidade, nome);
create unique index escola_alunos_registro on escola_alunos (registro);
create index escola_turmas_unidade on escola_turmas (id_unidade, ano);
create index escola_matriculas_aluno on escola_matriculas (id_aluno);
create index escola_matriculas_turma on escola_matriculas (id_turma, numero);
create index escola_notas_matricula on escola_notas (id_matricula, bimestre);
create index escola_frequencias_matricula on escola_frequencias (id_matricula, mes);
create index escola_faturas_matricula on escola_faturas (id_matricula);
create index escola_faturas_vencimento on escola_faturas (vencimento);
create index escola_pagamentos_fatura on escola_pagamentos (id_fatura);
