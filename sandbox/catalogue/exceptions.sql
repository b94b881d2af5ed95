-- What a list of products cannot say: rows as the years leave them in a real database.

-- A product of which nothing is known.
INSERT INTO tbProdutos (produto_id, descontinuado, is_deleted, data_created, data_modified)
VALUES (900, NULL, NULL, NULL, NULL)
GO

-- A price line whose price type no longer exists.
INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, preco_total, desconto, predef)
SELECT 9, produto_id, 10, 1, 2.3, 12.3, NULL, 0 FROM tbProdutos WHERE codigo = '10401'
GO

-- No default price line.
UPDATE tbProdutos_Precos SET predef = 0
WHERE produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10402')
GO

-- Two default price lines.
UPDATE tbProdutos_Precos SET predef = 1
WHERE tipo_id <= 2 AND produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10403')
GO

-- A price line that was created and never filled in.
UPDATE tbProdutos_Precos SET preco = NULL, iva = NULL, preco_total = NULL, desconto = NULL
WHERE tipo_id = 3 AND produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10404')
GO

-- An exempt price line without a reason, which cannot be saved as it is.
UPDATE tbProdutos_Precos SET iva_id = 4, iva = 0, preco_total = preco, iva_descrit = NULL
WHERE tipo_id = 2 AND produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10405')
GO

-- A VAT rate that no longer exists.
UPDATE tbProdutos_Precos SET iva_id = 99
WHERE tipo_id = 2 AND produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10406')
GO

-- A warehouse without a row of minimums, and a product without any stock row.
DELETE FROM tbProdutos_Stocks_Minimos
WHERE armazem_id = 2 AND produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10407')
GO

DELETE FROM tbProdutos_Stocks_Minimos
WHERE produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10424')
GO

DELETE FROM tbProdutos_Stocks
WHERE produto_id IN (SELECT produto_id FROM tbProdutos WHERE codigo = '10424')
GO

-- A product type that no longer exists.
UPDATE tbProdutos SET tipo_id = 99 WHERE codigo = '10445'
GO
