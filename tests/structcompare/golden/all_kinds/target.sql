CREATE TABLE dbo.Customers (
    ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Customers PRIMARY KEY CLUSTERED,
    Name nvarchar(50) NOT NULL,
    City varchar(40) NULL CONSTRAINT DF_Customers_City DEFAULT ('Oslo')
)
GO
CREATE TABLE dbo.Orders (
    ID int NOT NULL CONSTRAINT PK_Orders PRIMARY KEY CLUSTERED,
    CustomerID int NOT NULL CONSTRAINT FK_Orders_Customers REFERENCES dbo.Customers (ID),
    Total decimal(10,2) NULL
)
GO
CREATE TABLE dbo.Invoices (
    ID int NOT NULL CONSTRAINT PK_Invoices PRIMARY KEY CLUSTERED,
    OrderID int NOT NULL CONSTRAINT FK_Invoices_Orders REFERENCES dbo.Orders (ID)
)
GO
CREATE PROCEDURE dbo.GetOrders AS
SELECT ID, Total
FROM dbo.Orders
GO
CREATE PROCEDURE dbo.CountOrders AS SELECT COUNT(*) FROM dbo.Orders
GO
CREATE PROCEDURE dbo.ListCities AS SELECT City FROM dbo.Customers
GO
CREATE PROCEDURE dbo.AddOrder AS INSERT INTO dbo.Orders (ID, CustomerID) VALUES (1, 1)
GO
CREATE VIEW dbo.OpenOrders AS SELECT ID FROM dbo.Orders WHERE Total > 0
GO
CREATE VIEW dbo.Totals AS SELECT SUM(Total) AS Total FROM dbo.Orders
GO
CREATE TRIGGER dbo.OrdersChanged ON dbo.Orders AFTER UPDATE AS PRINT 'changed'
GO
