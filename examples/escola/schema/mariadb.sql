-- The look-up of a setting: the unit's own value when it has one, otherwise the general one, otherwise null.
-- On SQLite the connection brings this function with it.

create or replace function ambiente_buscadadostringconfiguracao(
  p_modulo varchar(60) character set utf8mb4 collate utf8mb4_unicode_ci,
  p_chave varchar(60) character set utf8mb4 collate utf8mb4_unicode_ci, p_unidade integer)
returns text character set utf8mb4 reads sql data
return (select c.valor from ambiente_configuracoes c
        where c.modulo = p_modulo and c.chave = p_chave
          and (c.id_unidade = p_unidade or c.id_unidade is null)
        order by c.id_unidade is null limit 1);
