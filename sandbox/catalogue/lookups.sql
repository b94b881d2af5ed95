-- The fixed tables of the invented sample catalogue: nothing here names a real company, person or brand.

INSERT INTO tbArmazens (armazem_id, descrit, sql_gateway, can_modify_produts, has_stocks) VALUES
  (1, 'Loja da Sede', 1, 1, 1),
  (2, 'Armazém Central', 1, 1, 1),
  (3, 'Loja de Évora', 1, 0, 1),
  (4, 'Escritório', 1, 1, 0),
  (5, 'Quiosque da Estação', 0, 1, 1),
  (6, 'Feira de São Martinho', 0, 0, 1),
  (7, 'Representação nos Açores', 1, 0, 0),
  (8, 'Vendedor itinerante', 0, 1, 0),
  (9, 'Arquivo morto', 0, 0, 0),
  (10, 'Depósito d''Além-Tejo', NULL, 1, 1),
  (11, 'Consignação em terceiros', 1, NULL, 1),
  (12, 'Loja em obras', 1, 1, NULL),
  (13, NULL, NULL, NULL, NULL),
  (14, NULL, 1, 1, 1)
GO

INSERT INTO tbCentros_Custo (centro_id, codigo, descrit) VALUES
  (1, 'LOJ', 'Loja'),
  (2, 'ARM', 'Armazém e expedição'),
  (3, 'NET', 'Vendas à distância'),
  (4, 'OFI', 'Oficina'),
  (5, 'SRV', 'Serviços e formação'),
  (6, 'ADM', 'Administração'),
  (7, 'EXP', 'Exportação')
GO

INSERT INTO tbTaxas_Iva (iva_id, codigo, descrit, tx, predef) VALUES
  (1, 'NOR', 'IVA à taxa normal (23 %)', 0.23, 1),
  (2, 'INT', 'IVA à taxa intermédia (13 %)', 0.13, 0),
  (3, 'RED', 'IVA à taxa reduzida (6 %)', 0.06, 0),
  (4, 'ISE', 'Isento de IVA', 0, 0)
GO

INSERT INTO tbTaxas_IVA_Insencoes (isencao_id, codigo, descrit) VALUES
  (1, 'M01', 'Artigo 16.º n.º 6 do CIVA'),
  (2, 'M02', 'Artigo 6.º do Decreto-Lei n.º 198/90, de 19 de Junho'),
  (3, 'M04', 'Isento Artigo 13.º do CIVA'),
  (4, 'M05', 'Isento Artigo 14.º do CIVA'),
  (5, 'M06', 'Isento Artigo 15.º do CIVA'),
  (6, 'M07', 'Isento Artigo 9.º do CIVA'),
  (7, 'M09', 'IVA - não confere direito a dedução (Artigo 62.º alínea b) do CIVA)'),
  (8, 'M10', 'IVA - Regime de isenção (Artigo 53.º do CIVA)'),
  (9, 'M11', 'Regime particular do tabaco (Decreto-Lei n.º 346/85, de 23 de Agosto)'),
  (10, 'M14', 'Regime da margem de lucro - Objectos de arte (Decreto-Lei n.º 199/96, de 18 de Outubro)'),
  (11, 'M16', 'Isento Artigo 14.º do RITI'),
  (12, 'M40', 'IVA - autoliquidação (Artigo 6.º n.º 6 alínea a) do CIVA, a contrário)'),
  (13, 'M99', 'Não sujeito; não tributado')
GO

-- Every combination of attributes that matters to the product form: none, some, all, null, and stock on, off and null.
INSERT INTO tbProdutos_Tipos (tipo_id, descrit, predef, tamanho, cor, altura, largura, profundidade, has_stocks) VALUES
  (1, 'Artigo', 1, 0, 0, 0, 0, 0, 1),
  (2, 'Vestuário e calçado', 0, 1, 1, 0, 0, 0, 1),
  (3, 'Casa e decoração', 0, 0, 1, 1, 1, 1, 1),
  (4, 'Bebida engarrafada', 0, 1, 0, 0, 0, 0, 1),
  (5, 'Serviço', 0, 0, 0, 0, 0, 0, 0),
  (6, 'Quota ou assinatura', 0, NULL, NULL, NULL, NULL, NULL, 0),
  (7, 'Artigo à consignação', 0, NULL, 1, NULL, NULL, NULL, NULL),
  (8, 'Artigo por medida', 0, 1, 1, 1, 1, 1, 1)
GO

INSERT INTO tbProdutos_Precos_Tipos (tipo_id, descrit, predef_venda) VALUES
  (1, 'Venda ao público', 1),
  (2, 'Revenda', 0),
  (3, 'Grossista', 0)
GO

INSERT INTO tbProdutos_Familias (familia_id, descrit) VALUES
  (1, 'Mercearia'),
  (2, 'Vinhos e bebidas'),
  (3, 'Casa'),
  (4, 'Vestuário'),
  (5, 'Calçado'),
  (6, 'Ferramentas'),
  (7, 'Papelaria'),
  (8, 'Jardim'),
  (9, 'Serviços'),
  (10, 'Artigos d''ocasião')
GO

INSERT INTO tbProdutos_Subfamilias (subfamilia_id, familia_id, descrit) VALUES
  (1, 1, 'Azeites e vinagres'),
  (2, 1, 'Conservas'),
  (3, 1, 'Massas, arroz e leguminosas'),
  (4, 1, 'Compotas e mel'),
  (5, 1, 'Café, chá e chocolate'),
  (6, 2, 'Tintos'),
  (7, 2, 'Brancos e rosados'),
  (8, 2, 'Licores e aguardentes'),
  (9, 2, 'Sumos e águas'),
  (10, 3, 'Cama e banho'),
  (11, 3, 'Cozinha e mesa'),
  (12, 3, 'Decoração e iluminação'),
  (13, 4, 'Homem'),
  (14, 4, 'Senhora'),
  (15, 4, 'Criança'),
  (16, 5, 'Homem'),
  (17, 5, 'Senhora'),
  (18, 5, 'Trabalho'),
  (19, 6, 'Manuais'),
  (20, 6, 'Eléctricas'),
  (21, 6, 'Fixação'),
  (22, 6, 'Tintas e colas'),
  (23, 7, 'Escrita'),
  (24, 7, 'Cadernos e papel'),
  (25, 7, 'Arquivo'),
  (26, 8, 'Rega'),
  (27, 8, 'Sementes e plantas'),
  (28, 9, 'Transporte e montagem'),
  (29, 9, 'Reparações'),
  (30, 9, 'Formação'),
  (31, 9, 'Bem-estar e quotas')
GO

INSERT INTO tbProdutos_Cores (cor_id, descrit, code) VALUES
  (1, 'Branco', 'BR'),
  (2, 'Preto', 'PT'),
  (3, 'Azul', 'AZ'),
  (4, 'Azul-marinho', 'AM'),
  (5, 'Vermelho', 'VM'),
  (6, 'Verde', 'VD'),
  (7, 'Verde-água', 'VA'),
  (8, 'Amarelo', 'AR'),
  (9, 'Castanho', 'CS'),
  (10, 'Cinzento', 'CZ'),
  (11, 'Bordeaux', 'BX'),
  (12, 'Salmão', 'SL'),
  (13, 'Pérola', 'PL'),
  (14, 'Sangue d''Boi', 'SB'),
  (15, 'Lilás', 'LI'),
  (16, 'Cru', NULL)
GO

-- The identifiers of sizes that are numbers never equal the number: size "42" is not row 42.
INSERT INTO tbProdutos_Tamanhos (tamanho_id, descrit, code) VALUES
  (1, 'XS', 'XS'),
  (2, 'S', 'S'),
  (3, 'M', 'M'),
  (4, 'L', 'L'),
  (5, 'XL', 'XL'),
  (6, 'XXL', 'XXL'),
  (7, '34', '34'),
  (8, '35', '35'),
  (9, '36', '36'),
  (10, '37', '37'),
  (11, '38', '38'),
  (12, '39', '39'),
  (13, '40', '40'),
  (14, '41', '41'),
  (15, '42', '42'),
  (16, '43', '43'),
  (17, '44', '44'),
  (18, '45', '45'),
  (19, '2 anos', '02A'),
  (20, '4 anos', '04A'),
  (21, '6 anos', '06A'),
  (22, '8 anos', '08A'),
  (23, '10 anos', '10A'),
  (24, '12 anos', '12A'),
  (25, '37,5 cl', '375'),
  (26, '50 cl', '050'),
  (27, '75 cl', '075'),
  (28, '1,5 l', '150'),
  (29, '5 l', '500'),
  (30, 'Solteiro (160x260 cm)', 'SOL'),
  (31, 'Casal (240x280 cm)', 'CAS'),
  (32, 'Casal grande (260x290 cm)', 'CSG'),
  (33, '30x50 cm', '3050'),
  (34, '50x100 cm', '5010'),
  (35, '100x150 cm', '1015'),
  (36, '20x30 cm', '2030'),
  (37, '40x60 cm', '4060'),
  (38, '60x90 cm', '6090'),
  (39, 'Pequeno', 'P'),
  (40, 'Médio', 'MD'),
  (41, 'Grande', 'G'),
  (42, 'Extra grande', 'XG'),
  (43, 'Único', 'UN')
GO

INSERT INTO tbDocumentos_Tipos (tipo_doc_id, code, descrit, change_stocks, peso) VALUES
  (1, 'FT', 'Factura', 1, 1),
  (2, 'FS', 'Factura simplificada', 1, 1),
  (3, 'GR', 'Guia de remessa', 1, 1),
  (4, 'NC', 'Nota de crédito', 1, -1),
  (5, 'OR', 'Orçamento', 0, 1),
  (6, 'PF', 'Factura pró-forma', NULL, 1)
GO

INSERT INTO tbDocumentos_Fornec_Tipos (tipo_doc_id, code, descrit, change_stocks, peso) VALUES
  (1, 'VFA', 'V/ Factura', 1, 1),
  (2, 'VGR', 'V/ Guia de remessa', 1, 1),
  (3, 'VNC', 'V/ Nota de crédito', 1, -1),
  (4, 'VCO', 'V/ Cotação', 0, 1),
  (5, 'VAV', 'V/ Aviso de lançamento', NULL, 1)
GO

-- Staff.
INSERT INTO tbContactos (contacto_id, nome, apelido, nome_union, localidade) VALUES
  (1, 'Ana', 'Mourão', 'Ana Mourão', 'Évora'),
  (2, 'Bruno', 'Conceição', 'Bruno Conceição', 'Setúbal'),
  (3, 'Carla', 'Seabra', 'Carla Seabra', 'Braga'),
  (4, 'Diogo', 'Vilhena', 'Diogo Vilhena', 'Lisboa'),
  (5, 'Eva', 'Assunção', 'Eva Assunção', 'Lisboa'),
  (6, 'Leonor', 'd''Orey', 'Leonor d''Orey', 'Sintra'),
  (7, 'Gil', 'Antão', 'Gil Antão', 'Faro'),
  (8, 'Maria', 'Furtado', 'Maria Furtado', 'Viseu')
GO

INSERT INTO tbContactos (contacto_id, nome, nome_union, nif, localidade, is_fornecedor) VALUES
  (101, 'Olivarda - Azeites d''Entre-Rios, Lda.', 'Olivarda - Azeites d''Entre-Rios, Lda.', '599000101', 'Mirandela', 1),
  (102, 'Conserveira Mareluz, S.A.', 'Conserveira Mareluz, S.A.', '599000102', 'Peniche', 1),
  (103, 'Moagem Trigalva & Irmãos', 'Moagem Trigalva & Irmãos', '599000103', 'Montemor', 1),
  (104, 'Doçaria Avó Brunhosa', 'Doçaria Avó Brunhosa', '599000104', 'Seia', 1),
  (105, 'Vinhalta - Casa Agrícola d''Além-Douro', 'Vinhalta - Casa Agrícola d''Além-Douro', '599000105', 'Régua', 1),
  (106, 'Distribuidora Fontelume', 'Distribuidora Fontelume', '599000106', 'Leiria', 1),
  (107, 'Têxteis Tecibela, S.A.', 'Têxteis Tecibela, S.A.', '599000107', 'Guimarães', 1),
  (108, 'Olaria Ceramonte', 'Olaria Ceramonte', '599000108', 'Redondo', 1),
  (109, 'Confecções Casalvento', 'Confecções Casalvento', '599000109', 'Covilhã', 1),
  (110, 'Calçado Passolindo', 'Calçado Passolindo', '599000110', 'Felgueiras', 1),
  (111, 'Ferragens Ferrovar, Lda.', 'Ferragens Ferrovar, Lda.', '599000111', 'Águeda', 1),
  (112, 'Tintas Tintarela do Sado', 'Tintas Tintarela do Sado', '599000112', 'Setúbal', 1),
  (113, 'Papelume - Artigos de Escritório', 'Papelume - Artigos de Escritório', '599000113', 'Maia', 1),
  (114, 'Regavale, Rega e Jardim', 'Regavale, Rega e Jardim', '599000114', 'Santarém', 1),
  (115, 'Íris d''Água - Iluminação', 'Íris d''Água - Iluminação', '599000115', 'Ílhavo', 1),
  (116, N'Przędzalnia Północna Sp. z o.o.', N'Przędzalnia Północna Sp. z o.o.', NULL, N'Łódź', 1),
  (117, NULL, NULL, NULL, NULL, 1)
GO

INSERT INTO tbContactos (contacto_id, nome, nome_union, nif, localidade, is_cliente) VALUES
  (200, 'Consumidor final', 'Consumidor final', '999999990', NULL, 1),
  (201, 'Restaurante O Tacho d''Avó', 'Restaurante O Tacho d''Avó', '599000201', 'Évora', 1),
  (202, 'Pensão Estrela do Monte', 'Pensão Estrela do Monte', '599000202', 'Portalegre', 1),
  (203, 'Mini-mercado São Romão', 'Mini-mercado São Romão', '599000203', 'Seia', 1),
  (204, 'Garrafeira do Rossio Velho', 'Garrafeira do Rossio Velho', '599000204', 'Lisboa', 1),
  (205, 'Construções Irmãos Pêgo, Lda.', 'Construções Irmãos Pêgo, Lda.', '599000205', 'Abrantes', 1),
  (206, 'Escola Básica Monte da Lua', 'Escola Básica Monte da Lua', '599000206', 'Sintra', 1),
  (207, 'Boutique Flor de Linho', 'Boutique Flor de Linho', '599000207', 'Guimarães', 1),
  (208, 'Sapataria Passo a Passo', 'Sapataria Passo a Passo', '599000208', 'Coimbra', 1),
  (209, 'Horta Biológica da Várzea', 'Horta Biológica da Várzea', '599000209', 'Torres Vedras', 1),
  (210, 'Clube Recreativo d''Alcáçova', 'Clube Recreativo d''Alcáçova', '599000210', 'Santarém', 1),
  (211, 'Hotel Quinta das Cegonhas', 'Hotel Quinta das Cegonhas', '599000211', 'Aveiro', 1),
  (212, 'João Nepomuceno Calhau', 'João Nepomuceno Calhau', '199000212', 'Beja', 1),
  (213, 'Inês Ximenes de Gusmão', 'Inês Ximenes de Gusmão', '199000213', 'Faro', 1)
GO

-- ana may do everything; bruno may change products; carla belongs to a group without policies; diogo belongs to no
-- group; eva is granted creation by name, and excluded by name from a deletion that her group is granted; d'orey has a
-- name with an apostrophe; gil belongs to a group without a code; marta is granted creation because her code begins
-- the code of maria; rui has no contact.
INSERT INTO tbUsers (user_id, code, descrit, contacto_id) VALUES
  (1, 'ANA', 'ana', 1),
  (2, 'BRU', 'bruno', 2),
  (3, 'CAR', 'carla', 3),
  (4, 'DIO', 'diogo', 4),
  (5, 'EVA', 'eva', 5),
  (6, 'ORE', 'd''orey', 6),
  (7, 'GIL', 'gil', 7),
  (8, 'MARIA', 'maria', 8),
  (9, 'MAR', 'marta', NULL),
  (10, 'RUI', 'rui', NULL)
GO

INSERT INTO tbGroups (group_id, code, descrit) VALUES
  (1, 'ADMIN', 'Administração'),
  (2, 'VENDAS', 'Vendas e loja'),
  (3, 'EXPED', 'Expedição'),
  (4, NULL, 'Estagiários'),
  (5, 'GESTAO', 'Gestão de produtos')
GO

INSERT INTO tbGroups_Users_Links (group_id, user_id) VALUES
  (1, 1),
  (2, 1),
  (2, 2),
  (3, 3),
  (5, 5),
  (1, 6),
  (4, 7),
  (3, 8),
  (3, 9),
  (2, 10)
GO

INSERT INTO tbSecurityPolicies (policy_id, code, descrit, users_groups) VALUES
  (1, '#2280', 'Produtos: apagar', '1ADMIN;1GESTAO;2EVA'),
  (2, '#2281', 'Produtos: alterar', '1ADMIN;1VENDAS;1GESTAO;1GIL'),
  (3, '#2282', 'Produtos: criar', '1ADMIN;1EVA;1DIO;1MARIA;2VENDAS'),
  (4, '#2301', 'Documentos: anular', '1ADMIN'),
  (5, '#2302', 'Documentos: reimprimir', NULL),
  (6, NULL, 'Política por atribuir', '1ADMIN;1VENDAS;1EXPED')
GO
